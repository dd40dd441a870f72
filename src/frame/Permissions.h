#pragma once

#include <QString>

namespace rk {

/// Whether the current user may do `action` ("create", "delete" or "edit") to monitorings of `category` in
/// the current project. Only the answer "true", as a text, permits; a failure therefore refuses.
/// GET projects/{p}/auth?category={category}&key={action}.
bool isPermitted(const QString& category, const char* action);

} // namespace rk
