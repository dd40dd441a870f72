#include "support/PostgresServer.h"

#include "support/ChildProcess.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

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
    m_own = std::make_unique<ChildProcess>(
        std::vector<std::string>{PYTHON_EXECUTABLE, POSTGRES_SERVER_SCRIPT, "run", POSTGRES_PROGRAMS});
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
