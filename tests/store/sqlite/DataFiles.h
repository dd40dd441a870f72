#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace monitorservice::test {

/// What SQLite finds wrong with a data file: damage, dangling references. Empty when nothing is.
std::vector<std::string> damageOf(const std::filesystem::path& file);

/// All rows of a data file, sorted, a line each that begins with the table. Numbers that the file alone knows
/// are not in it: points are named by their identifiers, and categories have no positions.
std::vector<std::string> rowsOf(const std::filesystem::path& file);

/// Makes a database of another application.
void makeForeignDatabase(const std::filesystem::path& file);

/// Makes a data file one of a later version of the service.
void setDataVersion(const std::filesystem::path& file, int version);

} // namespace monitorservice::test
