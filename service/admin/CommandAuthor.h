#pragma once

#include <string>

namespace monitorservice {

/// Who the audit trail names for what a command does: the login name with " (command line)" behind it.
std::string commandAuthor();

} // namespace monitorservice
