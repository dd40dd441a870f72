#pragma once

#include "ServiceSession.h"
#include "extensions/ServiceExtensions.h"

#include <QList>
#include <QString>
#include <QStringList>

/// The points of a monitoring as the service sums them up; `monitoring` is its identifier. With `names` those
/// of these names at least: all where they are more than a condition holds, or none. Throws a Failure where
/// the service lacks the extension PointSummaries.
QList<PointSummary> summariesOfPoints(ServiceSession& session, const QString& monitoring,
                                      const QStringList& names);
