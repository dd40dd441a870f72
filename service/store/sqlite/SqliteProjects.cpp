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

bool SqliteProjects::rename(const std::string& id, const std::string& name)
{
    SqliteStatement statement = m_connection.statement("UPDATE projects SET name = ? WHERE id = ?");
    return statement.bind(name, id).run() > 0;
}

bool SqliteProjects::remove(const std::string& id)
{
    SqliteStatement statement = m_connection.statement("DELETE FROM projects WHERE id = ?");
    return statement.bind(id).run() > 0;
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

bool SqliteCategories::rename(const std::string& category, const std::string& name)
{
    // Between the first statement and the last one there are references to a category that is not there.
    m_connection.execute("PRAGMA defer_foreign_keys = ON");
    SqliteStatement renamed = m_connection.statement("UPDATE categories SET name = ? WHERE name = ?");
    const bool isThere = renamed.bind(name, category).run() > 0;
    for (const char* const table : {"cells", "sub_categories", "changes"}) {
        m_connection
            .statement("UPDATE " + std::string(table) +
                       " SET document = json_set(document, '$.category', ?) WHERE category = ?")
            .bind(name, category)
            .run();
    }
    m_connection.statement("UPDATE grants SET category = ? WHERE category = ?").bind(name, category).run();
    m_connection.execute("PRAGMA defer_foreign_keys = OFF");
    return isThere;
}

bool SqliteCategories::remove(const std::string& category)
{
    SqliteStatement statement = m_connection.statement("DELETE FROM categories WHERE name = ?");
    return statement.bind(category).run() > 0;
}

} // namespace monitorservice
