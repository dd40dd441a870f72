#include "import/ZeroInitialValues.h"

#include "PointNames.h"
#include "extensions/ServiceExtensions.h"
#include "points/PointSummaries.h"

void setZeroInitialValues(ServiceSession& session, const QSet<PointKey>& points, const ImportNotes& notes)
{
    if (points.isEmpty()) {
        return;
    }
    if (!session.extensions().has(Extension::PointChanges) ||
        !session.extensions().has(Extension::PointSummaries)) {
        notes({ImportNote::Kind::Warning,
               QStringLiteral("the service cannot be told the initial value 0 of %1 points: their variations "
                              "count from their first readings")
                   .arg(points.size())});
        return;
    }
    QMap<QString, QStringList> names; // by monitoring
    for (const PointKey& point : points) {
        names[point.target.cellId].append(point.name);
    }
    PointChange zero;
    zero.initialValue = 0.0;
    for (auto cell = names.begin(); cell != names.end(); ++cell) {
        cell->removeDuplicates();
        for (const PointSummary& point : summariesOfPoints(session, cell.key(), *cell)) {
            if (points.contains({{cell.key(), point.subCategoryId}, point.name, plainDepth(point.depth)})) {
                session.extensions().changePoint(point.id, zero);
            }
        }
    }
}
