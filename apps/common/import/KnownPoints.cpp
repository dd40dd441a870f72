#include "import/KnownPoints.h"

#include "DataHeld.h"
#include "PointNames.h"
#include "extensions/ServiceExtensions.h"
#include "points/ConditionNames.h"
#include "points/PointOrigins.h"
#include "points/PointSummaries.h"

#include <algorithm>

namespace {

// Name and depth.
using NameAndDepth = QPair<QString, QString>;

// Names of the points, in portions that a request can hold.
QList<QStringList> namePortions(const QList<PointKey>& points)
{
    QStringList names;
    for (const PointKey& point : points) {
        names.append(point.name);
    }
    names.removeDuplicates();
    names.sort();
    QList<QStringList> portions;
    int size = 0;
    for (const QString& name : qAsConst(names)) {
        const int nameSize = conditionnames::sizeOf(name);
        if (portions.isEmpty() || size + nameSize > conditionnames::largestSize) {
            portions.append(QStringList());
            size = 0;
        }
        portions.last().append(name);
        size += nameSize;
    }
    return portions;
}

// Identifiers of a monitoring's points with these names. The statistic gives them with one entry per day,
// where reading the points would bring every sample.
QHash<NameAndDepth, QSet<QString>> pointsMeasured(ServiceSession& session, const QString& cellId,
                                                  const QList<QStringList>& portions)
{
    QHash<NameAndDepth, QSet<QString>> measured;
    for (const QStringList& names : portions) {
        RKPointLocationCondition condition;
        condition.cellId = cellId;
        condition.names = names;
        QMap<QDate, QList<RKPointLocationChartData>> days;
        session.ask(QStringLiteral("find the points that exist already"),
                    [&] { return session.projectData().getNormalPointLocation(condition, days); });
        for (const QList<RKPointLocationChartData>& day : qAsConst(days)) {
            for (const RKPointLocationChartData& entry : day) {
                measured[{entry.name, entry.depth}].insert(entry.id);
            }
        }
    }
    return measured;
}

// Whether one of the points `ids`, all of the same name and depth, is that of `point`. When that is unclear
// it is taken to be: an initial value that is replaced by mistake would hide how far the point has moved.
bool isAmong(const PointKey& point, const QSet<QString>& ids, const PointOrigins& origins,
             const ImportNotes& notes)
{
    bool isPossible = false;
    for (const QString& id : ids) {
        const QSet<QString> subCategories = origins.subCategoriesOf(id);
        if (!subCategories.contains(point.target.subCategoryId)) {
            continue;
        }
        if (subCategories.size() == 1) {
            return true;
        }
        isPossible = true;
    }
    if (isPossible) {
        notes({ImportNote::Kind::Warning,
               QStringLiteral("%1 is taken for a point that exists already, so it gets no initial value")
                   .arg(pointText(point.name, point.depth))});
    }
    return isPossible;
}

// Those of `points` that are known, as the service tells; all are of `cellId`.
QSet<PointKey> toldOfCell(ServiceSession& session, const QString& cellId, const QList<PointKey>& points)
{
    QStringList names;
    for (const PointKey& point : points) {
        names.append(point.name);
    }
    names.removeDuplicates();
    QSet<PointKey> held;
    for (const PointSummary& point : summariesOfPoints(session, cellId, names)) {
        held.insert({{cellId, point.subCategoryId}, point.name, plainDepth(point.depth)});
    }
    QSet<PointKey> known(points.cbegin(), points.cend());
    return known.intersect(held);
}

// The same as far as it can be worked out.
QSet<PointKey> knownOfCell(ServiceSession& session, const QString& cellId, const QList<PointKey>& points,
                           const ImportNotes& notes)
{
    RKDataManageCondition condition;
    condition.cellId = cellId;
    const QList<RKDataManage> held = dataheld::readAll(session, condition);
    QList<PointKey> concerned;
    for (const PointKey& point : points) {
        if (std::any_of(held.cbegin(), held.cend(), [&](const RKDataManage& data) {
                return data.subCategoryId == point.target.subCategoryId;
            })) {
            concerned.append(point);
        }
    }
    const QHash<NameAndDepth, QSet<QString>> measured =
        pointsMeasured(session, cellId, namePortions(concerned));

    QSet<PointKey> known;
    QList<PointKey> unclear;
    for (const PointKey& point : qAsConst(concerned)) {
        const int count = measured.value({point.name, point.depth}).size();
        if (count == held.size()) { // one in each sub-category
            known.insert(point);
        } else if (count > 0) {
            unclear.append(point);
        }
    }
    if (unclear.isEmpty()) {
        return known;
    }
    const PointOrigins origins(session, cellId, namePortions(unclear), held);
    for (const PointKey& point : qAsConst(unclear)) {
        if (isAmong(point, measured.value({point.name, point.depth}), origins, notes)) {
            known.insert(point);
        }
    }
    return known;
}

} // namespace

QSet<PointKey> knownPoints(ServiceSession& session, const QSet<PointKey>& points, const ImportNotes& notes)
{
    QMap<QString, QList<PointKey>> cells;
    for (const PointKey& point : points) {
        cells[point.target.cellId].append(point);
    }
    QSet<PointKey> known;
    for (auto cell = cells.cbegin(); cell != cells.cend(); ++cell) {
        known.unite(session.extensions().has(Extension::PointSummaries)
                        ? toldOfCell(session, cell.key(), *cell)
                        : knownOfCell(session, cell.key(), *cell, notes));
    }
    return known;
}
