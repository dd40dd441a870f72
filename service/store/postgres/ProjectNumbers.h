#pragma once

#include "store/postgres/PostgresConnection.h"

#include <cstdint>
#include <string>
#include <unordered_map>

namespace monitorservice {

/// The numbers that keys begin with, of the projects that one session asks for.
class ProjectNumbers
{
public:
    explicit ProjectNumbers(PostgresConnection& connection) : m_connection(connection) {}

    /// That of no row when there is no such project.
    std::int64_t of(const std::string& project);
    /// Gives a project its number, unless it has one.
    std::int64_t give(const std::string& project);

private:
    PostgresConnection& m_connection;
    std::unordered_map<std::string, std::int64_t> m_known;
};

/// The number of a point is that of its project and, below, one of its own.
std::int64_t projectNumberOf(std::int64_t point);
std::int64_t pointNumber(std::int64_t project, std::int64_t ordinal);

} // namespace monitorservice
