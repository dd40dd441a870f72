#pragma once

#include <filesystem>

namespace monitorservice {

/// Copies a data file as it is at one moment, while others read and write it: one file without a log, made
/// under another name first and checked, readable by its owner alone. Throws StoreError; there is no copy
/// then.
void backUpDatabase(const std::filesystem::path& dataFile, const std::filesystem::path& copy);

/// Makes a data file of such a copy, which must be whole, ours and of a version that is known. Throws
/// StoreError, with CannotOpen when there is something at the place or a service uses it; there is no data
/// file then.
void restoreDatabase(const std::filesystem::path& copy, const std::filesystem::path& dataFile);

} // namespace monitorservice
