#include "support/PostgresServer.h"

#include "support/ChildProcess.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace monitorservice::test {

const PostgresServer& PostgresServer::instance()
{
    static const char* const file = std::getenv("RK_POSTGRES_SERVER");
    static const PostgresServer server = file == nullptr ? PostgresServer() : PostgresServer(file);
    return server;
}

// The one whose folder the file names.
PostgresServer::PostgresServer(const char* file)
{
    std::getline(std::ifstream(file), m_folder);
    if (m_folder.empty()) {
        throw std::runtime_error(std::string(file) + " names no PostgreSQL server");
    }
}

PostgresServer::PostgresServer()
{
    run({"run", POSTGRES_PROGRAMS});
}

PostgresServer::PostgresServer(const char* kind, const std::string& argument)
{
    run({kind, POSTGRES_PROGRAMS, argument});
}

void PostgresServer::run(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), {PYTHON_EXECUTABLE, POSTGRES_SERVER_SCRIPT});
    m_own = std::make_unique<ChildProcess>(std::move(arguments));
    m_folder = m_own->readLine();
    if (m_folder.empty()) {
        throw std::runtime_error(m_own->readErrors());
    }
}

PostgresServer::~PostgresServer()
{
    if (m_own) {
        m_own->signal(SIGTERM);
        m_own->wait();
    }
}

std::string PostgresServer::url(const std::string& database) const
{
    return "postgresql:///" + database + "?host=" + m_folder + "&user=postgres";
}

void PostgresServer::kill()
{
    ask(SIGUSR1, "killed");
}

void PostgresServer::start()
{
    ask(SIGUSR2, "started");
}

void PostgresServer::ask(int signal, const char* answer)
{
    m_own->signal(signal);
    if (m_own->readLine() != answer) {
        throw std::runtime_error("the PostgreSQL server was not " + std::string(answer));
    }
}

} // namespace monitorservice::test
