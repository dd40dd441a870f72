#pragma once

#include "PointSheets.h"
#include "Session.h"

#include <QList>
#include <RKMonitoring.h>
#include <RKPointLocation.h>

/// Makes points of `monitoring` with their samples the result as an AGS 4 file. Warns of texts that are not
/// ASCII. Throws a Failure when it is not known what a point measures, or AGS cannot hold a text.
void addAgsFile(Session& session, const RKMonitoring& monitoring, const QList<RKPointLocation>& points,
                const PointMeanings& meanings);
