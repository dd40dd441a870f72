#pragma once

#include <memory>
#include <string>

namespace monitorservice::test {

class ChildProcess;

/// The PostgreSQL server of these tests. ctest starts one for all programs that need it
/// (rk_add_test(POSTGRES)); a program that is run by itself has one of its own, from the first use to the
/// program's end.
class PostgresServer
{
public:
    /// Throws std::runtime_error when there is none to be had.
    static const PostgresServer& instance();

    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;

    /// Names the database to a client, with the right to do anything.
    std::string url(const std::string& database) const;

private:
    PostgresServer();
    ~PostgresServer();

    std::unique_ptr<ChildProcess> m_own;
    std::string m_folder; // of its socket
};

} // namespace monitorservice::test
