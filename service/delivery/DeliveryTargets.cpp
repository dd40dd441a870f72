#include "delivery/DeliveryTargets.h"

#include "delivery/DeliveryRefusal.h"
#include "domain/Cell.h"
#include "domain/SubCategory.h"

#include <set>

namespace monitorservice {

namespace {

// Each takes a lock of those that a database has for all; whoever needs more takes all at once.
constexpr std::size_t mostClaimed = 16;

// Documents that are read ahead: they are held.
constexpr std::size_t mostExpected = 100;

[[noreturn]] void refuse(const std::string& place, const std::string& member, const std::string& reason)
{
    throw DeliveryRefusal("\"" + place + "." + member + "\": " + reason);
}

MonitoredQuantity quantityOf(const StoredDocument& cell, const StoredDocument& subCategory)
{
    const auto measured = fromDocument<SubCategory>(subCategory.text);
    return {cell.project,  cell.id,      fromDocument<Cell>(cell.text).name, cell.category, subCategory.id,
            measured.kind, measured.unit};
}

std::shared_ptr<LocalDays> daysIn(const Session& session, const std::string& project)
{
    const std::optional<Project> found = session.projects().find(project);
    if (!found) {
        throw StoreError(StoreFailure::InputOutput, "the project of a monitoring is missing");
    }
    return std::make_shared<LocalDays>(found->timeZone);
}

} // namespace

// Numbers of points are given by project, and waited for: two deliveries that both went to two projects could
// wait for each other. One monitoring is of one project.
Claim claimOf(const Delivery& delivery)
{
    std::set<std::string> subCategories;
    for (const DeliveredPoint& point : delivery.points) {
        if (point.cell != delivery.points.front().cell) {
            return {};
        }
        subCategories.insert(point.subCategory);
    }
    if (subCategories.empty() || subCategories.size() > mostClaimed) {
        return {};
    }
    Claim claim;
    claim.targets.emplace();
    for (const std::string& subCategory : subCategories) {
        claim.targets->push_back({delivery.points.front().cell, subCategory});
    }
    return claim;
}

Expectations expectationsOf(const Delivery& delivery)
{
    std::set<std::string> cells;
    std::set<std::string> subCategories;
    std::set<std::string> projects;
    for (const DeliveredPoint& point : delivery.points) {
        cells.insert(point.cell);
        subCategories.insert(point.subCategory);
        if (point.project) {
            projects.insert(*point.project);
        }
    }
    Expectations expected;
    if (cells.size() + subCategories.size() + projects.size() <= mostExpected) {
        for (const std::string& cell : cells) {
            expected.documents.emplace_back(DocumentKind::Cell, cell);
        }
        for (const std::string& subCategory : subCategories) {
            expected.documents.emplace_back(DocumentKind::SubCategory, subCategory);
        }
        expected.projects.assign(projects.begin(), projects.end());
    }
    return expected;
}

DeliveryTarget targetOf(const Session& session, const std::string& cell, const std::string& subCategory)
{
    const auto monitoring = session.documents(DocumentKind::Cell).find(cell);
    const auto quantity = session.documents(DocumentKind::SubCategory).find(subCategory);
    if (!monitoring || !quantity) {
        throw StoreError(StoreFailure::InputOutput, "the monitoring or the sub-category of data is missing");
    }
    return {quantityOf(*monitoring, *quantity), false, daysIn(session, monitoring->project)};
}

const DeliveryTarget& DeliveryTargets::of(const Delivery& delivery, const DeliveredPoint& point)
{
    const auto key = std::pair(point.cell, point.subCategory);
    auto found = m_found.find(key);
    if (found == m_found.end()) {
        found = m_found.emplace(key, find(delivery.nameOf(point.element), point)).first;
    }
    if (point.project && *point.project != found->second.quantity.project) {
        refuse(delivery.nameOf(point.element), "projectId",
               "the monitoring is not of project \"" + *point.project + "\"");
    }
    return found->second;
}

DeliveryTarget DeliveryTargets::find(const std::string& place, const DeliveredPoint& point)
{
    const std::optional<StoredDocument> cell = m_session.documents(DocumentKind::Cell).find(point.cell);
    const bool mayCreate = cell && m_mayDo(Right::Create, cell->project, cell->category);
    if (!cell || (!mayCreate && !m_mayDo(Right::Read, cell->project, cell->category))) {
        refuse(place, "cellId", "there is no monitoring \"" + point.cell + "\"");
    }
    if (!mayCreate) {
        throw DeliveryRefusal("\"" + place + "\": the token may not create in monitorings of category \"" +
                                  cell->category + "\" in this project",
                              DeliveryRefusal::Reason::Forbidden);
    }
    const std::optional<StoredDocument> subCategory =
        m_session.documents(DocumentKind::SubCategory).find(point.subCategory);
    const bool isOfCategory = subCategory && subCategory->category == cell->category;
    const bool isKnown =
        isOfCategory || (subCategory && m_mayDo(Right::Read, cell->project, subCategory->category));
    if (!isKnown || subCategory->project != cell->project) {
        refuse(place, "subCategoryId", "the project has no sub-category \"" + point.subCategory + "\"");
    }
    if (!isOfCategory) {
        refuse(place, "subCategoryId",
               "the sub-category is of category \"" + subCategory->category + "\", the monitoring of \"" +
                   cell->category + "\"");
    }
    return {quantityOf(*cell, *subCategory), m_mayDo(Right::Edit, cell->project, cell->category),
            daysOf(cell->project)};
}

std::shared_ptr<LocalDays> DeliveryTargets::daysOf(const std::string& project)
{
    std::shared_ptr<LocalDays>& days = m_days[project];
    if (!days) {
        days = daysIn(m_session, project);
    }
    return days;
}

} // namespace monitorservice
