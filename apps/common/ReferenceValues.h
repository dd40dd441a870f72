#pragma once

#include "ServiceSession.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <RKMonitoring.h>

/// What the variations of a point, and so its limits, count from.
struct ReferenceValue
{
    double value = 0.0;
    /// The point's first reading, because its initial value is not known.
    bool isFirstReading = false;
};

/// The reference values of the named points of a monitoring, by pointLabel(). A point without readings has
/// one only when its initial value is known.
QMap<QString, ReferenceValue> readReferenceValues(ServiceSession& session, const RKMonitoring& monitoring,
                                                  const QStringList& names);
