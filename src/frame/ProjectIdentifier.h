#pragma once

#include <QJsonValue>
#include <QString>

namespace rk {

/// Identifier of the current project, asked of the application's cache object anew on every call.
QString projectIdentifier();

/// The same as the "projectId" of a request body: JSON null when there is no current project.
QJsonValue projectIdentifierValue();

} // namespace rk
