#include "import/ZeroInitialValues.h"

#include "PagedReading.h"
#include "PointNames.h"
#include "extensions/ServiceExtensions.h"

namespace {

// The points of a sub-category with a name.
QList<PointSummary> summariesOf(ServiceSession& session, ServiceExtensions& extensions, const PointKey& point)
{
    PointSummaryQuery query;
    query.where = {{QStringLiteral("cellId"), point.target.cellId},
                   {QStringLiteral("subCategoryId"), point.target.subCategoryId},
                   {QStringLiteral("name"), point.name}};
    const QString project = session.project();
    return paging::readAll(
        QStringLiteral("points"),
        [&](int skip, int limit) { return extensions.pointSummaries(project, query, skip, limit); },
        [&] { return extensions.pointSummaryCount(project, query); });
}

} // namespace

void setZeroInitialValues(ServiceSession& session, const QSet<PointKey>& points, const ImportNotes& notes)
{
    if (points.isEmpty()) {
        return;
    }
    ServiceExtensions extensions(session);
    if (!extensions.has(Extension::PointChanges) || !extensions.has(Extension::PointSummaries)) {
        notes({ImportNote::Kind::Warning,
               QStringLiteral("the service cannot be told the initial value 0 of %1 points: their variations "
                              "count from their first readings")
                   .arg(points.size())});
        return;
    }
    PointChange zero;
    zero.initialValue = 0.0;
    for (const PointKey& point : points) {
        for (const PointSummary& summary : summariesOf(session, extensions, point)) {
            if (isSameDepth(point.depth, summary.depth)) {
                extensions.changePoint(summary.id, zero);
            }
        }
    }
}
