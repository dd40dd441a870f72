#include "administration/GrantAdministration.h"

#include "administration/AdministrationError.h"
#include "administration/Existence.h"
#include "json/JsonText.h"
#include "trail/AuditTrail.h"

#include <algorithm>
#include <utility>

namespace monitorservice {

namespace {

// What is common to the entries of the audit trail about a grant.
Change grantChange(const char* action, const Grant& grant, const Token& token, const std::string& author)
{
    Change change;
    change.project = grant.project.value_or("");
    change.category = grant.category.value_or("");
    change.action = action;
    change.subject = grant.id;
    change.name = token.owner;
    change.author.name = author;
    return change;
}

// The grant to which rights for the same would be added.
std::optional<Grant> grantLike(const Session& session, const Grant& grant)
{
    const std::vector<Grant> held = session.grants().ofToken(grant.token);
    const auto like = std::find_if(held.begin(), held.end(), [&grant](const Grant& one) {
        return one.project == grant.project && one.category == grant.category;
    });
    return like == held.end() ? std::nullopt : std::optional(*like);
}

} // namespace

GrantAdministration::GrantAdministration(Session& session, std::string author)
    : m_session(session), m_author(std::move(author))
{
}

Grant GrantAdministration::add(Grant grant)
{
    const Token token = requireToken(m_session, grant.token);
    if (token.revokedAt) {
        throw AdministrationError(AdministrationFailure::Contradiction, "token", token.id,
                                  "token " + token.id + " has been revoked");
    }
    if (grant.project) {
        requireProject(m_session, *grant.project);
    }
    if (grant.category) {
        requireCategory(m_session, *grant.category);
    }
    const std::optional<Grant> held = grantLike(m_session, grant);
    if (held && (held->rights | grant.rights) == held->rights) {
        return *held;
    }
    grant.id = m_session.newIdentifier();
    grant.createdAt = m_session.now();
    m_session.grants().add(grant);
    if (held) {
        grant.id = held->id;
        grant.createdAt = held->createdAt;
        grant.rights = held->rights | grant.rights;
    }
    Change change = grantChange(held ? "grant.changed" : "grant.created", grant, token, m_author);
    change.before = held ? toDocument(*held) : change.before;
    change.after = toDocument(grant);
    record(m_session, std::move(change));
    return grant;
}

Grant GrantAdministration::revoke(const std::string& id)
{
    Grant grant = requireGrant(m_session, id);
    m_session.grants().remove(id);
    Change change = grantChange("grant.revoked", grant, requireToken(m_session, grant.token), m_author);
    change.before = toDocument(grant);
    record(m_session, std::move(change));
    return grant;
}

std::string toDocument(const Grant& grant)
{
    JsonObjectWriter document;
    document.text("_id", grant.id).text("tokenId", grant.token);
    grant.project ? document.text("projectId", *grant.project) : document.null("projectId");
    grant.category ? document.text("category", *grant.category) : document.null("category");
    return document.text("rights", grant.rights.names()).text("createdAt", isoText(grant.createdAt)).finish();
}

} // namespace monitorservice
