#include "Deployment.h"

#include "service/http/RawClient.h"

#include <libpq-fe.h>
#include <sys/prctl.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace monitorservice::test {

namespace {

const std::string database = "postgres";
const std::string program = "/usr/local/bin/monitor-service";

void endWithTest()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

std::string sample(const char* name)
{
    return std::string(DEPLOYMENT_FILES) + '/' + name;
}

void replace(std::string& text, const std::string& part, const std::string& other)
{
    const std::size_t begin = text.find(part);
    if (begin == std::string::npos) {
        throw std::runtime_error(part + " is not in " + text);
    }
    text.replace(begin, part.size(), other);
}

// What the unit says for an instance, for a shell, which takes variables in a command as systemd does.
std::string unitCommand(std::uint16_t port)
{
    const std::string environment = "Environment=";
    const std::string start = "ExecStart=";
    std::ifstream unit(sample("monitor-service@.service"));
    std::string command;
    for (std::string line; std::getline(unit, line);) {
        if (line.rfind(environment, 0) == 0) {
            command += "export " + line.substr(environment.size()) + "; ";
        } else if (line.rfind(start, 0) == 0) {
            command += "exec " + line.substr(start.size());
        }
    }
    replace(command, "exec " + program, "exec \"$0\"");
    replace(command, "%i", std::to_string(port));
    // The file is at another place here, as /etc/default/monitor-service may say it is.
    replace(command, "; exec", "; MONITOR_SERVICE_STORE_URL_FILE=$1; exec");
    return command;
}

bool isAnswering(std::uint16_t port)
{
    try {
        RawClient client(port);
        client.send("GET /readyz HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
        return client.readAnswer().status == 200;
    } catch (const std::system_error&) { // nobody listens yet
        return false;
    }
}

} // namespace

// The file lies in a folder that goes even when the test is killed.
Deployment::Deployment()
    : m_primary(PostgresServer::primary(sample("postgresql.conf"))),
      m_urlFile(m_primary.folder() + "/store.url")
{
    std::ofstream(m_urlFile) << url() << '\n';
    std::filesystem::permissions(m_urlFile, std::filesystem::perms::owner_read);
}

std::string Deployment::url() const
{
    return "postgresql:///" + database + "?host=" + m_primary.folder() + "," + m_standby.folder() +
           "&user=postgres&target_session_attrs=read-write";
}

void Deployment::start()
{
    for (std::size_t i = 0; i < instanceCount; ++i) {
        startInstance(i);
    }
    std::vector<std::string> command{"/usr/bin/env", "MONITORING_BIND=127.0.0.1:" + std::to_string(port())};
    const std::array names{"ONE", "TWO", "THREE"};
    for (std::size_t i = 0; i < instanceCount; ++i) {
        command.push_back(std::string("MONITORING_") + names.at(i) +
                          "=127.0.0.1:" + std::to_string(instancePort(i)));
    }
    command.insert(command.end(), {HAPROXY_EXECUTABLE, "-db", "-f", sample("haproxy.cfg")});
    m_balancer = std::make_unique<ChildProcess>(command, endWithTest);
    constexpr int tries = 600;
    for (int i = 0; !isAnswering(port()); ++i) {
        if (i == tries) {
            m_balancer->signal(SIGKILL);
            throw std::runtime_error("the balancer does not answer: " + m_balancer->readErrors());
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

bool Deployment::stop()
{
    m_balancer->signal(SIGUSR1); // ends when all that has begun is answered
    bool isGood = m_balancer->wait() == 0;
    for (auto& instance : m_instances) {
        instance->signal(SIGTERM);
        isGood = instance->wait() == 0 && isGood;
    }
    return isGood;
}

void Deployment::killInstance(std::size_t index)
{
    m_instances.at(index)->signal(SIGKILL);
    m_instances.at(index)->wait();
}

void Deployment::startInstance(std::size_t index)
{
    auto& instance = m_instances.at(index);
    const std::vector<std::string> command{"/bin/sh", "-c", unitCommand(instancePort(index)),
                                           MONITOR_SERVICE_EXECUTABLE, m_urlFile};
    instance = std::make_unique<ChildProcess>(command, endWithTest);
    const std::string line = instance->readLine();
    if (line.rfind("monitor-service listening on ", 0) != 0) {
        throw std::runtime_error("not ready: " + line + instance->readErrors());
    }
}

std::string Deployment::ask(const PostgresServer& server, const std::string& statement)
{
    const std::unique_ptr<PGconn, decltype(&PQfinish)> connection(PQconnectdb(server.url(database).c_str()),
                                                                  PQfinish);
    const std::unique_ptr<PGresult, decltype(&PQclear)> result(PQexec(connection.get(), statement.c_str()),
                                                               PQclear);
    switch (PQresultStatus(result.get())) {
    case PGRES_TUPLES_OK:
        return PQntuples(result.get()) > 0 ? PQgetvalue(result.get(), 0, 0) : "";
    case PGRES_COMMAND_OK:
        return "";
    default:
        throw std::runtime_error(statement + ": " + PQerrorMessage(connection.get()));
    }
}

} // namespace monitorservice::test
