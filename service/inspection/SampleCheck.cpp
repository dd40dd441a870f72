#include "inspection/SampleCheck.h"

#include "administration/Existence.h"
#include "domain/Cell.h"
#include "domain/Document.h"
#include "domain/PointLocation.h"
#include "inspection/PointInspection.h"
#include "store/StoreError.h"

#include <limits>
#include <memory>
#include <vector>

namespace monitorservice {

namespace {

std::vector<Cell> cellsOf(const Session& session, const std::string& project)
{
    DocumentQuery query;
    query.project = project;
    std::vector<Cell> cells;
    session.documents(DocumentKind::Cell).visit(query, [&cells](std::string_view document) {
        cells.push_back(fromDocument<Cell>(document));
    });
    return cells;
}

std::vector<DeliveredTo> pointsOf(const Session& session, const Cell& cell, const SubCategory& subCategory)
{
    std::vector<DeliveredTo> points;
    session.measurements().visitDeliveredTo(cell.id, subCategory.id, std::numeric_limits<std::int64_t>::min(),
                                            [&points](const DeliveredTo& point) { points.push_back(point); });
    return points;
}

std::string inQuotes(const std::string& name)
{
    return '"' + name + '"';
}

class SampleCheck
{
public:
    SampleCheck(Store& store, const std::function<void(const std::string&)>& tell)
        : m_store(store), m_session(store.read()), m_tell(tell)
    {
    }

    CheckedSamples run()
    {
        for (const Project& project : m_session->projects().list()) {
            LocalDays calendar(project.timeZone);
            const std::vector<SubCategory> subCategories = subCategoriesOf(*m_session, project.id);
            for (const Cell& cell : cellsOf(*m_session, project.id)) {
                for (const SubCategory& subCategory : subCategories) {
                    const std::string place = "project " + inQuotes(project.name) + ", monitoring " +
                                              inQuotes(cell.name) + ", " + inQuotes(subCategory.name);
                    for (const DeliveredTo& point : pointsOf(*m_session, cell, subCategory)) {
                        check(point, place, calendar);
                    }
                }
            }
        }
        return m_checked;
    }

private:
    void check(const DeliveredTo& point, const std::string& place, LocalDays& calendar)
    {
        ++m_checked.points;
        try {
            const InspectedPoint found = inspectPoint(*m_session, point, calendar);
            m_checked.samples += found.samples.size();
            m_checked.days += found.days;
            for (const std::string& flaw : found.flaws) {
                tell(point, place, flaw);
            }
        } catch (const DamagedDocument& error) {
            tell(point, place, error.what());
        } catch (const StoreError& error) {
            tell(point, place, std::string("its samples cannot be read: ") + error.what());
            m_session = m_store.read(); // the one before may be of no use any more
        }
    }

    void tell(const DeliveredTo& point, const std::string& place, const std::string& flaw)
    {
        ++m_checked.flaws;
        std::string name = point.point.id;
        try {
            const auto location = fromDocument<PointLocation>(point.point.document);
            name = inQuotes(location.name) + (location.depth.empty() ? "" : " at " + location.depth) + " (" +
                   point.point.id + ")";
        } catch (const DamagedDocument&) {
            // Then it is named by its identifier.
        }
        m_tell(place + ", point " + name + ": " + flaw);
    }

    Store& m_store;
    std::unique_ptr<const Session> m_session;
    const std::function<void(const std::string&)>& m_tell;
    CheckedSamples m_checked;
};

} // namespace

CheckedSamples checkSamples(Store& store, const std::function<void(const std::string& flaw)>& tell)
{
    return SampleCheck(store, tell).run();
}

} // namespace monitorservice
