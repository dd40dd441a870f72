#pragma once

#include "store/Categories.h"
#include "store/Projects.h"
#include "store/postgres/PostgresConnection.h"
#include "store/postgres/ProjectNumbers.h"

namespace monitorservice {

class PostgresProjects final : public Projects
{
public:
    PostgresProjects(PostgresConnection& connection, ProjectNumbers& numbers)
        : m_connection(connection), m_numbers(numbers)
    {
    }

    std::optional<Project> find(const std::string& id) const override;
    std::vector<Project> list() const override;
    void insert(const Project& project) override;
    bool rename(const std::string& id, const std::string& name) override;
    bool remove(const std::string& id) override;

private:
    PostgresConnection& m_connection;
    ProjectNumbers& m_numbers;
};

/// Sends for what find() of projects will give, as PostgresConnection::expect().
void expectProject(PostgresConnection& connection, const std::string& id);

class PostgresCategories final : public Categories
{
public:
    explicit PostgresCategories(PostgresConnection& connection) : m_connection(connection) {}

    bool contains(const std::string& category) const override;
    std::vector<std::string> list() const override;
    bool add(const std::string& category) override;
    bool rename(const std::string& category, const std::string& name) override;
    bool remove(const std::string& category) override;

private:
    void renameIn(const std::string& table, const std::string& category, const std::string& name);

    PostgresConnection& m_connection;
};

} // namespace monitorservice
