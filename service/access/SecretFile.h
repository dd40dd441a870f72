#pragma once

#include <string>

namespace monitorservice {

/// The one line of a file that keeps a secret, without its end. Throws std::invalid_argument with a message
/// that names the option and the file when it cannot be read, when every user of the machine can read it, and
/// when it is empty or has more lines than one.
std::string readSecretFile(const std::string& option, const std::string& file);

} // namespace monitorservice
