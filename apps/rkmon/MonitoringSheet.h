#pragma once

#include "Output.h"

#include <RKMonitoring.h>

#include <QList>

/// Monitorings as rows.
Sheet monitoringSheet(const QList<RKMonitoring>& monitorings);
