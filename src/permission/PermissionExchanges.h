#pragma once

#include <QString>

namespace rk {

/// Whether the current user may do `action` ("create", "delete" or "edit") to monitorings of `category` in
/// the current project: only a reply whose "value" is the text "true" permits, whatever became of the
/// request. GET projects/{p}/auth?category={category}&key={action}.
bool isPermitted(const QString& category, const char* action);

} // namespace rk
