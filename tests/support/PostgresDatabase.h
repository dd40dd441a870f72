#pragma once

#include <string>

namespace monitorservice::test {

/// An empty database on the server of these tests; gone with the object, whoever is still connected to it.
class PostgresDatabase
{
public:
    /// Throws std::runtime_error.
    PostgresDatabase();
    /// With the content of the other one, to which nobody may be connected.
    PostgresDatabase(const PostgresDatabase& other);
    /// The running test fails when the database cannot be removed.
    ~PostgresDatabase();
    PostgresDatabase& operator=(const PostgresDatabase&) = delete;

    /// What a client needs to know to connect.
    const std::string& url() const { return m_url; }

private:
    explicit PostgresDatabase(const std::string& content);

    std::string m_name;
    std::string m_url;
};

} // namespace monitorservice::test
