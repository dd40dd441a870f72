#include "store/sqlite/SqliteProjects.h"

namespace monitorservice {

namespace {

const std::string selectProjects = "SELECT id, name, time_zone, created_at FROM projects ";

Project projectOf(const SqliteStatement& row)
{
    return {row.text(0), row.text(1), row.text(2), row.integer(3)};
}

} // namespace

std::optional<Project> SqliteProjects::find(const std::string& id) const
{
    SqliteStatement statement = m_connection.statement(selectProjects + "WHERE id = ?");
    return statement.bind(id).step() ? std::optional(projectOf(statement)) : std::nullopt;
}

std::vector<Project> SqliteProjects::list() const
{
    SqliteStatement statement = m_connection.statement(selectProjects + "ORDER BY id");
    std::vector<Project> projects;
    while (statement.step()) {
        projects.push_back(projectOf(statement));
    }
    return projects;
}

void SqliteProjects::insert(const Project& project)
{
    m_connection.statement("INSERT INTO projects (id, name, time_zone, created_at) VALUES (?, ?, ?, ?)")
        .bind(project.id, project.name, project.timeZone, project.createdAt)
        .run();
}

bool SqliteCategories::contains(const std::string& category) const
{
    SqliteStatement statement = m_connection.statement("SELECT 1 FROM categories WHERE name = ?");
    return statement.bind(category).step();
}

std::vector<std::string> SqliteCategories::list() const
{
    SqliteStatement statement = m_connection.statement("SELECT name FROM categories ORDER BY position");
    std::vector<std::string> categories;
    while (statement.step()) {
        categories.push_back(statement.text(0));
    }
    return categories;
}

bool SqliteCategories::add(const std::string& category)
{
    SqliteStatement statement =
        m_connection.statement("INSERT INTO categories (name) VALUES (?) ON CONFLICT (name) DO NOTHING");
    return statement.bind(category).run() > 0;
}

} // namespace monitorservice
