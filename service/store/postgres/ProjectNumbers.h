#pragma once

#include "store/postgres/PostgresConnection.h"

#include <cstdint>
#include <string>
#include <unordered_map>

namespace monitorservice {

/// The numbers that keys begin with, of the projects that one session asks for. They never change.
class ProjectNumbers
{
public:
    explicit ProjectNumbers(PostgresConnection& connection) : m_connection(connection) {}

    /// That of no row when there is no such project.
    std::int64_t of(const std::string& project);
    /// That of the project which the monitoring is of; that of no row when there is no such monitoring.
    std::int64_t ofCell(const std::string& cell);
    /// What a row says that was read for something else.
    void note(const std::string& project, std::int64_t number) { m_known[project] = number; }
    void noteCell(const std::string& cell, std::int64_t number) { m_ofCells[cell] = number; }
    /// Gives a project its number, unless it has one.
    std::int64_t give(const std::string& project);

private:
    PostgresConnection& m_connection;
    std::unordered_map<std::string, std::int64_t> m_known;
    std::unordered_map<std::string, std::int64_t> m_ofCells;
};

/// The number of a point is that of its project and, below, one of its own.
std::int64_t projectNumberOf(std::int64_t point);
std::int64_t pointNumber(std::int64_t project, std::int64_t ordinal);

} // namespace monitorservice
