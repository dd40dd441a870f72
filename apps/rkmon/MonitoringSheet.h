#pragma once

#include "Output.h"

#include <QList>
#include <RKMonitoring.h>

/// Monitorings as rows.
Sheet monitoringSheet(const QList<RKMonitoring>& monitorings);
