#include "administration/SubCategoryAdministration.h"

#include "administration/AdministrationError.h"
#include "administration/Existence.h"
#include "administration/NearNames.h"
#include "administration/TextCheck.h"
#include "administration/Uses.h"
#include "domain/Assign.h"
#include "trail/AuditTrail.h"

#include <utility>

namespace monitorservice {

namespace {

// What is common to the entries of the audit trail about a sub-category.
Change subCategoryChange(const char* action, const SubCategory& subCategory, const std::string& author)
{
    Change change;
    change.project = subCategory.project;
    change.category = subCategory.category;
    change.subCategory = subCategory.id;
    change.action = action;
    change.subject = subCategory.id;
    change.name = subCategory.name;
    change.author.name = author;
    return change;
}

void check(const SubCategoryDescription& description)
{
    if (description.name) {
        requireText("name", *description.name);
    }
    requireTextOrNone("alias", description.alias.value_or(""));
    requireTextOrNone("unit", description.unit.value_or(""));
    const std::optional<std::int32_t> decimals = description.decimals.value_or(std::nullopt);
    if (decimals && (*decimals < 0 || *decimals > mostDecimals)) {
        throw AdministrationError(AdministrationFailure::BadValue, "decimals", std::to_string(*decimals),
                                  "is not a whole number from 0 to " + std::to_string(mostDecimals));
    }
}

// Gives whether anything changed.
bool apply(const SubCategoryDescription& description, SubCategory& subCategory)
{
    bool changed = assign(subCategory.name, description.name);
    changed = assign(subCategory.alias, description.alias) || changed;
    changed = assign(subCategory.kind, description.kind) || changed;
    changed = assign(subCategory.unit, description.unit) || changed;
    return assign(subCategory.decimals, description.decimals) || changed;
}

void requireNameOfItsOwn(const Session& session, const SubCategory& subCategory)
{
    for (const SubCategory& other : subCategoriesOf(session, subCategory.project)) {
        const bool isCalledSo = other.category == subCategory.category && other.name == subCategory.name;
        if (isCalledSo && other.id != subCategory.id) {
            throw AdministrationError(AdministrationFailure::Contradiction, "sub-category", subCategory.name,
                                      "category \"" + subCategory.category +
                                          "\" of the project has a sub-category \"" + subCategory.name +
                                          "\" already");
        }
    }
}

std::vector<std::string> warningsOf(const Session& session, const SubCategory& subCategory)
{
    std::vector<std::string> warnings;
    for (const SubCategory& other : subCategoriesOf(session, subCategory.project)) {
        if (other.id == subCategory.id) {
            continue;
        }
        if (!subCategory.alias.empty() && other.alias == subCategory.alias) {
            warnings.push_back("sub-category \"" + other.name + "\" of category \"" + other.category +
                               "\" has the alias \"" + other.alias + "\" too");
        }
        if (other.category == subCategory.category && differInCaseOnly(other.name, subCategory.name)) {
            warnings.push_back("category \"" + other.category + "\" of the project has a sub-category \"" +
                               other.name + "\" too");
        }
    }
    return warnings;
}

} // namespace

SubCategoryAdministration::SubCategoryAdministration(Session& session, std::string author)
    : m_session(session), m_author(std::move(author))
{
}

Administered<SubCategory> SubCategoryAdministration::create(const std::string& project,
                                                            const std::string& category,
                                                            const SubCategoryDescription& description)
{
    requireText("name", description.name.value_or(""));
    check(description);
    requireProject(m_session, project);
    requireCategory(m_session, category);
    SubCategory subCategory;
    subCategory.project = project;
    subCategory.category = category;
    apply(description, subCategory);
    requireNameOfItsOwn(m_session, subCategory);
    subCategory.id = m_session.newIdentifier();
    const std::string document = toDocument(subCategory);
    m_session.documents(DocumentKind::SubCategory).insert(project, subCategory.id, document);
    Change change = subCategoryChange("subCategory.created", subCategory, m_author);
    change.after = document;
    record(m_session, std::move(change));
    return {subCategory, warningsOf(m_session, subCategory)};
}

Administered<SubCategory> SubCategoryAdministration::change(const std::string& id,
                                                            const SubCategoryDescription& description)
{
    check(description);
    SubCategory subCategory = requireSubCategory(m_session, id);
    const std::string before = toDocument(subCategory);
    if (apply(description, subCategory)) {
        requireNameOfItsOwn(m_session, subCategory);
        const std::string document = toDocument(subCategory);
        m_session.documents(DocumentKind::SubCategory).replace(subCategory.project, id, document);
        Change change = subCategoryChange("subCategory.changed", subCategory, m_author);
        change.before = before;
        change.after = document;
        record(m_session, std::move(change));
    }
    // Names and aliases that stay were warned of when they were given.
    const bool isCalledAnew = description.name || description.alias;
    return {subCategory, isCalledAnew ? warningsOf(m_session, subCategory) : std::vector<std::string>()};
}

SubCategory SubCategoryAdministration::remove(const std::string& id)
{
    SubCategory subCategory = requireSubCategory(m_session, id);
    requireUnused("sub-category", "\"" + subCategory.name + "\"", usesOfSubCategory(m_session, subCategory));
    m_session.documents(DocumentKind::SubCategory).remove(subCategory.project, id);
    Change change = subCategoryChange("subCategory.removed", subCategory, m_author);
    change.before = toDocument(subCategory);
    record(m_session, std::move(change));
    return subCategory;
}

} // namespace monitorservice
