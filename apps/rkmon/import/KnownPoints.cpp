#include "import/KnownPoints.h"

#include "Failure.h"
#include "Pages.h"

#include <algorithm>

namespace {

/// Names of one request; the service takes a condition of 8 KB.
constexpr int largestNames = 4000;

/// Sub-categories that the service holds data of for a monitoring.
QSet<QString> subCategoriesHeld(Session& session, const QString& cellId)
{
    RKDataManageCondition condition;
    condition.cellId = cellId;
    const auto readPage = [&](int skip, int limit) {
        QList<RKDataManage> page;
        session.ask(QStringLiteral("list the data held"), [&] {
            return session.projectData().getDataManageRangeData(condition, skip, limit, page);
        });
        return page;
    };
    const auto readCount = [&] {
        int count = 0;
        session.ask(QStringLiteral("count the data held"),
                    [&] { return session.projectData().getDataManageRangeCount(condition, count); });
        return count;
    };
    QSet<QString> held;
    for (const RKDataManage& data : pages::readAll(QStringLiteral("data held"), readPage, readCount))
        held.insert(data.subCategoryId);
    return held;
}

/// Name and depth of the points of a monitoring that are called one of `names`. The statistic tells them with one
/// entry per day, where reading the points would bring every sample.
QSet<QPair<QString, QString>> pointsMeasured(Session& session, const QString& cellId,
                                             const QStringList& names)
{
    RKPointLocationCondition condition;
    condition.cellId = cellId;
    condition.names = names;
    QMap<QDate, QList<RKPointLocationChartData>> days;
    session.ask(QStringLiteral("find the points that are there already"),
                [&] { return session.projectData().getNormalPointLocation(condition, days); });
    QSet<QPair<QString, QString>> points;
    for (const QList<RKPointLocationChartData>& day : qAsConst(days))
        for (const RKPointLocationChartData& entry : day)
            points.insert({entry.name, entry.depth});
    return points;
}

/// Names of the points of a monitoring, in portions that a request can hold.
QList<QStringList> namePortions(const QSet<PointKey>& points, const QString& cellId)
{
    QStringList names;
    for (const PointKey& point : points)
        if (point.target.cellId == cellId)
            names.append(point.name);
    names.removeDuplicates();
    names.sort();
    QList<QStringList> portions;
    int size = 0;
    for (const QString& name : qAsConst(names)) {
        const int nameSize = name.toUtf8().size() * 2 + 3; // as JSON, with escapes, quotes and a comma
        if (portions.isEmpty() || size + nameSize > largestNames) {
            portions.append(QStringList());
            size = 0;
        }
        portions.last().append(name);
        size += nameSize;
    }
    return portions;
}

QSet<QPair<QString, QString>> pointsOfCell(Session& session, const QSet<PointKey>& points,
                                           const QString& cellId)
{
    QSet<QPair<QString, QString>> measured;
    for (const QStringList& names : namePortions(points, cellId))
        measured.unite(pointsMeasured(session, cellId, names));
    return measured;
}

} // namespace

QSet<PointKey> knownPoints(Session& session, const QSet<PointKey>& points)
{
    QSet<QString> cells;
    for (const PointKey& point : points)
        cells.insert(point.target.cellId);

    QSet<PointKey> known;
    for (const QString& cell : qAsConst(cells)) {
        const QSet<QString> held = subCategoriesHeld(session, cell);
        const bool isConcerned = std::any_of(points.cbegin(), points.cend(), [&](const PointKey& point) {
            return point.target.cellId == cell && held.contains(point.target.subCategoryId);
        });
        if (!isConcerned)
            continue;
        const QSet<QPair<QString, QString>> measured = pointsOfCell(session, points, cell);
        for (const PointKey& point : points)
            if (point.target.cellId == cell && held.contains(point.target.subCategoryId) &&
                measured.contains({point.name, point.depth}))
                known.insert(point);
    }
    return known;
}
