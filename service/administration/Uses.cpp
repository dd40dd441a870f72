#include "administration/Uses.h"

#include "administration/AdministrationError.h"
#include "query/Where.h"

#include <algorithm>
#include <cstdint>

namespace monitorservice {

namespace {

void addUses(std::string& uses, const char* what, std::uint64_t number)
{
    if (number > 0) {
        uses += (uses.empty() ? "" : ", ") + std::string(what) + ": " + std::to_string(number);
    }
}

template <typename IsOne>
std::uint64_t grantsOf(const Session& session, IsOne&& isOne)
{
    const std::vector<Grant> grants = session.grants().list();
    return static_cast<std::uint64_t>(std::count_if(grants.begin(), grants.end(), isOne));
}

} // namespace

std::string usesOfProject(const Session& session, const std::string& project)
{
    DocumentQuery query;
    query.project = project;
    std::string uses;
    addUses(uses, "monitorings", session.documents(DocumentKind::Cell).count(query));
    addUses(uses, "sub-categories", session.documents(DocumentKind::SubCategory).count(query));
    addUses(uses, "grants",
            grantsOf(session, [&project](const Grant& grant) { return grant.project == project; }));
    return uses;
}

std::string usesOfCategory(const Session& session, const std::string& category)
{
    std::string uses;
    for (const Project& project : session.projects().list()) {
        DocumentQuery query;
        query.project = project.id;
        query.categories = {category};
        std::string inProject;
        addUses(inProject, "monitorings", session.documents(DocumentKind::Cell).count(query));
        addUses(inProject, "sub-categories", session.documents(DocumentKind::SubCategory).count(query));
        addUses(inProject, "grants", grantsOf(session, [&](const Grant& grant) {
                    return grant.project == project.id && grant.category == category;
                }));
        if (!inProject.empty()) {
            uses += (uses.empty() ? "" : "; ") + inProject + " in project \"" + project.name + "\"";
        }
    }
    return uses;
}

std::string usesOfSubCategory(const Session& session, const SubCategory& subCategory)
{
    const Where where = Where::equals("subCategoryId", subCategory.id);
    DocumentQuery query;
    query.project = subCategory.project;
    query.where = &where;
    std::string uses;
    addUses(uses, "point locations", session.documents(DocumentKind::PointLocation).count(query));
    addUses(uses, "groups", session.documents(DocumentKind::Group).count(query));
    addUses(uses, "data manages", session.documents(DocumentKind::DataManage).count(query));
    addUses(uses, "alarms", session.documents(DocumentKind::Alarm).count(query));
    return uses;
}

void requireUnused(const std::string& kind, const std::string& name, const std::string& uses)
{
    if (!uses.empty()) {
        throw AdministrationError(AdministrationFailure::InUse, kind, name,
                                  kind + " " + name + " is still in use and stays: " + uses);
    }
}

} // namespace monitorservice
