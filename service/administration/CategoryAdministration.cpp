#include "administration/CategoryAdministration.h"

#include "administration/AdministrationError.h"
#include "administration/Existence.h"
#include "administration/NearNames.h"
#include "administration/TextCheck.h"
#include "administration/Uses.h"
#include "json/JsonText.h"
#include "trail/AuditTrail.h"

#include <utility>

namespace monitorservice {

namespace {

// What is common to the entries of the audit trail about a category. It is identified by its name, and is of
// all projects; so are the entries: as entries "of" the category they would be renamed with it.
Change categoryChange(const char* action, const std::string& category, const std::string& author)
{
    Change change;
    change.action = action;
    change.subject = category;
    change.name = category;
    change.author.name = author;
    return change;
}

void requireNew(const Session& session, const std::string& category)
{
    if (session.categories().contains(category)) {
        throw AdministrationError(AdministrationFailure::Contradiction, "category", category,
                                  "there is a category \"" + category + "\" already");
    }
}

std::vector<std::string> warningsOf(const Session& session, const std::string& category)
{
    std::vector<std::string> warnings;
    for (const std::string& other : session.categories().list()) {
        if (differInCaseOnly(other, category)) {
            warnings.push_back("there is a category \"" + other + "\" too");
        }
    }
    return warnings;
}

} // namespace

CategoryAdministration::CategoryAdministration(Session& session, std::string author)
    : m_session(session), m_author(std::move(author))
{
}

void CategoryAdministration::check(const std::string& category)
{
    requireText("category", category);
}

Administered<std::string> CategoryAdministration::add(const std::string& category)
{
    check(category);
    requireNew(m_session, category);
    m_session.categories().add(category);
    Change change = categoryChange("category.created", category, m_author);
    change.after = categoryDocument(category);
    record(m_session, std::move(change));
    return {category, warningsOf(m_session, category)};
}

Administered<std::string> CategoryAdministration::rename(const std::string& category, const std::string& name)
{
    check(name);
    requireCategory(m_session, category);
    if (name != category) {
        requireNew(m_session, name);
        m_session.categories().rename(category, name);
        Change change = categoryChange("category.renamed", name, m_author);
        change.before = categoryDocument(category);
        change.after = categoryDocument(name);
        record(m_session, std::move(change));
    }
    return {name, warningsOf(m_session, name)};
}

std::string CategoryAdministration::remove(const std::string& category)
{
    requireCategory(m_session, category);
    requireUnused("category", "\"" + category + "\"", usesOfCategory(m_session, category));
    m_session.categories().remove(category);
    Change change = categoryChange("category.removed", category, m_author);
    change.before = categoryDocument(category);
    record(m_session, std::move(change));
    return category;
}

std::string categoryDocument(const std::string& category)
{
    return JsonObjectWriter().text("name", category).finish();
}

} // namespace monitorservice
