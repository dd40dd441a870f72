#include "store/postgres/ProjectNumbers.h"

namespace monitorservice {

namespace {

constexpr std::int64_t pointsOfProject = std::int64_t{1} << 32U;

constexpr std::int64_t none = -1;

} // namespace

std::int64_t ProjectNumbers::of(const std::string& project)
{
    const auto known = m_known.find(project);
    if (known != m_known.end()) {
        return known->second;
    }
    const PostgresResult found =
        m_connection.run("SELECT number FROM project_numbers WHERE id = $1", project);
    const std::int64_t number = found.isEmpty() ? none : found.integer(0, 0);
    m_known.emplace(project, number);
    return number;
}

std::int64_t ProjectNumbers::ofCell(const std::string& cell)
{
    const auto known = m_ofCells.find(cell);
    if (known != m_ofCells.end()) {
        return known->second;
    }
    const PostgresResult found = m_connection.run("SELECT project_number FROM cells WHERE id = $1", cell);
    if (found.isEmpty()) {
        return none; // there may be one later
    }
    return m_ofCells.emplace(cell, found.integer(0, 0)).first->second;
}

std::int64_t ProjectNumbers::give(const std::string& project)
{
    if (const std::int64_t number = of(project); number != none) {
        return number;
    }
    const PostgresResult given = m_connection.run(
        "INSERT INTO project_numbers (number, id) SELECT max(number) + 1, $1 FROM project_numbers "
        "RETURNING number",
        project);
    m_known[project] = given.integer(0, 0);
    return given.integer(0, 0);
}

std::int64_t projectNumberOf(std::int64_t point)
{
    return point / pointsOfProject;
}

std::int64_t pointNumber(std::int64_t project, std::int64_t ordinal)
{
    return project * pointsOfProject + ordinal;
}

} // namespace monitorservice
