#include "store/postgres/PostgresProjects.h"

#include "json/JsonMembers.h"
#include "json/JsonText.h"
#include "store/postgres/PostgresCursor.h"

namespace monitorservice {

namespace {

const std::string selectProjects = "SELECT id, name, time_zone, created_at FROM projects ";
const std::string selectProject = selectProjects + "WHERE id = $1";

Project projectOf(const PostgresResult& rows, int row)
{
    return {rows.text(row, 0), rows.text(row, 1), rows.text(row, 2), rows.integer(row, 3)};
}

} // namespace

std::optional<Project> PostgresProjects::find(const std::string& id) const
{
    const PostgresResult found = m_connection.run(selectProject, id);
    return found.isEmpty() ? std::nullopt : std::optional(projectOf(found, 0));
}

void expectProject(PostgresConnection& connection, const std::string& id)
{
    connection.expect(selectProject, id);
}

std::vector<Project> PostgresProjects::list() const
{
    return m_connection.run(selectProjects + "ORDER BY id").each(projectOf);
}

void PostgresProjects::insert(const Project& project)
{
    m_connection.post("INSERT INTO projects (project_number, id, name, time_zone, created_at) VALUES "
                      "($1, $2, $3, $4, $5)",
                      m_numbers.give(project.id), project.id, project.name, project.timeZone,
                      project.createdAt);
}

bool PostgresProjects::rename(const std::string& id, const std::string& name)
{
    return m_connection.run("UPDATE projects SET name = $1 WHERE id = $2", name, id).affected() > 0;
}

bool PostgresProjects::remove(const std::string& id)
{
    return m_connection.run("DELETE FROM projects WHERE id = $1", id).affected() > 0;
}

bool PostgresCategories::contains(const std::string& category) const
{
    return !m_connection.run("SELECT 1 FROM categories WHERE name = $1", category).isEmpty();
}

std::vector<std::string> PostgresCategories::list() const
{
    return m_connection.run("SELECT name FROM categories ORDER BY position").each(PostgresResult::firstText);
}

bool PostgresCategories::add(const std::string& category)
{
    return m_connection
               .run("INSERT INTO categories (name, position) SELECT $1, coalesce(max(position), 0) + 1 "
                    "FROM categories ON CONFLICT (name) DO NOTHING",
                    category)
               .affected() > 0;
}

bool PostgresCategories::rename(const std::string& category, const std::string& name)
{
    // Between the first statement and the last one there are references to a category that is not there.
    m_connection.execute("SET CONSTRAINTS ALL DEFERRED");
    const bool isThere =
        m_connection.run("UPDATE categories SET name = $1 WHERE name = $2", name, category).affected() > 0;
    for (const char* const table : {"cells", "sub_categories", "changes"}) {
        renameIn(table, category, name);
    }
    m_connection.post("UPDATE grants SET category = $1 WHERE category = $2", name, category);
    m_connection.execute("SET CONSTRAINTS ALL IMMEDIATE");
    return isThere;
}

bool PostgresCategories::remove(const std::string& category)
{
    return m_connection.run("DELETE FROM categories WHERE name = $1", category).affected() > 0;
}

// The documents come through here: the database has no way to change a member that leaves the others as they
// stand.
void PostgresCategories::renameIn(const std::string& table, const std::string& category,
                                  const std::string& name)
{
    std::string quotedName;
    appendJsonString(quotedName, name);
    PostgresCursor cursor(m_connection,
                          Sql("SELECT project_number, id, document FROM " + table + " WHERE category = ")
                              .appendValue(category));
    while (cursor.next()) {
        m_connection.post(
            "UPDATE " + table + " SET category = $3, document = $4 WHERE project_number = $1 AND id = $2",
            cursor.integer(0), cursor.view(1), name, withMember(cursor.view(2), "category", quotedName));
    }
}

} // namespace monitorservice
