#include "points/PointSummaries.h"

#include "PagedReading.h"
#include "points/ConditionNames.h"

#include <QJsonArray>

namespace {

QJsonObject conditionOf(const QString& monitoring, const QStringList& names)
{
    QJsonObject where{{QStringLiteral("cellId"), monitoring}};
    if (!names.isEmpty() && conditionnames::sizeOf(names) <= conditionnames::largestSize) {
        where.insert(QStringLiteral("name"),
                     QJsonObject{{QStringLiteral("$in"), QJsonArray::fromStringList(names)}});
    }
    return where;
}

} // namespace

QList<PointSummary> summariesOfPoints(ServiceSession& session, const QString& monitoring,
                                      const QStringList& names)
{
    PointSummaryQuery query;
    query.where = conditionOf(monitoring, names);
    const QString project = session.project();
    return paging::readAll(
        QStringLiteral("points"),
        [&](int skip, int limit) { return session.extensions().pointSummaries(project, query, skip, limit); },
        [&] { return session.extensions().pointSummaryCount(project, query); });
}
