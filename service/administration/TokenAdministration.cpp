#include "administration/TokenAdministration.h"

#include "access/Secret.h"
#include "administration/Existence.h"
#include "administration/TextCheck.h"
#include "json/JsonText.h"
#include "trail/AuditTrail.h"

#include <utility>

namespace monitorservice {

namespace {

// What is common to the entries of the audit trail about a token.
Change tokenChange(const char* action, const Token& token, const std::string& author)
{
    Change change;
    change.action = action;
    change.subject = token.id;
    change.name = token.owner;
    change.author.name = author;
    return change;
}

} // namespace

TokenAdministration::TokenAdministration(Session& session, std::string author)
    : m_session(session), m_author(std::move(author))
{
}

void TokenAdministration::check(const TokenDescription& description)
{
    requireText("owner", description.owner);
    requireTextOrNone("name", description.name);
}

NewToken TokenAdministration::create(const TokenDescription& description)
{
    check(description);
    NewToken made{{m_session.newIdentifier(), description.owner, description.name, m_session.now(),
                   description.expiresAt, std::nullopt},
                  newTokenText()};
    m_session.tokens().insert(made.token, sha256(made.secret));
    Change change = tokenChange("token.created", made.token, m_author);
    change.after = toDocument(made.token);
    record(m_session, std::move(change));
    return made;
}

Token TokenAdministration::revoke(const std::string& id)
{
    Token token = requireToken(m_session, id);
    if (token.revokedAt) {
        return token;
    }
    Change change = tokenChange("token.revoked", token, m_author);
    change.before = toDocument(token);
    token.revokedAt = m_session.now();
    change.after = toDocument(token);
    m_session.tokens().revoke(id, *token.revokedAt);
    record(m_session, std::move(change));
    return token;
}

std::string toDocument(const Token& token)
{
    JsonObjectWriter document;
    document.text("_id", token.id)
        .text("owner", token.owner)
        .text("name", token.name)
        .text("createdAt", isoText(token.createdAt));
    const auto optionalTime = [&document](std::string_view member, const std::optional<Instant>& time) {
        time ? document.text(member, isoText(*time)) : document.null(member);
    };
    optionalTime("expiresAt", token.expiresAt);
    optionalTime("revokedAt", token.revokedAt);
    return document.finish();
}

} // namespace monitorservice
