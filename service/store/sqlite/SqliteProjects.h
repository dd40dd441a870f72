#pragma once

#include "store/Categories.h"
#include "store/Projects.h"
#include "store/sqlite/SqliteConnection.h"

namespace monitorservice {

class SqliteProjects final : public Projects
{
public:
    explicit SqliteProjects(SqliteConnection& connection) : m_connection(connection) {}

    std::optional<Project> find(const std::string& id) const override;
    std::vector<Project> list() const override;
    void insert(const Project& project) override;
    bool rename(const std::string& id, const std::string& name) override;
    bool remove(const std::string& id) override;

private:
    SqliteConnection& m_connection;
};

class SqliteCategories final : public Categories
{
public:
    explicit SqliteCategories(SqliteConnection& connection) : m_connection(connection) {}

    bool contains(const std::string& category) const override;
    std::vector<std::string> list() const override;
    bool add(const std::string& category) override;
    bool rename(const std::string& category, const std::string& name) override;
    bool remove(const std::string& category) override;

private:
    SqliteConnection& m_connection;
};

} // namespace monitorservice
