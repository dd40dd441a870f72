#include "ReferenceValues.h"

#include "PointNames.h"

QMap<QString, ReferenceValue> readReferenceValues(ServiceSession& session, const RKMonitoring& monitoring,
                                                  const QStringList& names)
{
    RKPointLocationCondition condition;
    condition.cellId = monitoring.id;
    condition.names = names;
    QList<RKPointLocation> points;
    session.ask(QStringLiteral("read the initial values of \"%1\"").arg(monitoring.name),
                [&] { return session.data().getPointLocation(condition, points, false); });
    QMap<QString, ReferenceValue> references;
    for (const RKPointLocation& point : qAsConst(points)) {
        // The library reads an initial value with a fraction as 0, which therefore says nothing.
        const bool isKnown = point.initialValue != 0.0;
        if (isKnown || !point.data.isEmpty()) {
            references.insert(pointLabel(point.name, point.depth),
                              {isKnown ? point.initialValue : point.data.constFirst().value, !isKnown});
        }
    }
    return references;
}
