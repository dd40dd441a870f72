#pragma once

#include "RequestFailure.h"

#include <QSet>
#include <QString>

namespace extensions {

/// GET projects/{project}/alarmManages?open=true, page by page: the identifiers.
QSet<QString> readOpenAlarms(const RequestContext& context, const QString& project);

} // namespace extensions
