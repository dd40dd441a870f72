#pragma once

#include <memory>
#include <string>
#include <vector>

namespace monitorservice::test {

class ChildProcess;

/// A PostgreSQL server for tests.
class PostgresServer
{
public:
    /// The one of all tests. ctest starts it for all programs that need it (rk_add_test(POSTGRES)); a program
    /// that is run by itself has one of its own, from the first use to the program's end. Throws
    /// std::runtime_error when there is none to be had.
    static const PostgresServer& instance();

    /// One that goes with the object. Throws likewise.
    PostgresServer();
    /// One with the settings of a file, which are to say which standby it waits for. Throws likewise.
    static PostgresServer primary(const std::string& settings) { return {"primary", settings}; }
    /// One that follows this one, as the standby "standby", until it is promoted. Throws likewise.
    PostgresServer standby() const { return {"standby", m_folder}; }
    ~PostgresServer();
    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;

    /// Names the database to a client, with the right to do anything.
    std::string url(const std::string& database) const;

    /// The folder of its socket, which names it among the hosts of a URL.
    const std::string& folder() const { return m_folder; }

    /// Ends all of its processes at once, as when its machine goes.
    void kill();
    /// After that, with what it had written; returns when it takes connections.
    void start();

private:
    explicit PostgresServer(const char* file);
    PostgresServer(const char* kind, const std::string& argument);

    void run(std::vector<std::string> arguments);
    void ask(int signal, const char* answer);

    std::unique_ptr<ChildProcess> m_own;
    std::string m_folder;
};

} // namespace monitorservice::test
