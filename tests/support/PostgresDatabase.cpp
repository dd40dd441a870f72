#include "support/PostgresDatabase.h"

#include "support/PostgresServer.h"

#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <stdexcept>

namespace monitorservice::test {

namespace {

std::string newName()
{
    static std::atomic<int> last = 0;
    return "t_" + std::to_string(getpid()) + "_" + std::to_string(++last);
}

void run(const std::string& statement)
{
    const std::unique_ptr<PGconn, decltype(&PQfinish)> connection(
        PQconnectdb(PostgresServer::instance().url("postgres").c_str()), PQfinish);
    if (PQstatus(connection.get()) != CONNECTION_OK) {
        throw std::runtime_error(PQerrorMessage(connection.get()));
    }
    const std::unique_ptr<PGresult, decltype(&PQclear)> result(PQexec(connection.get(), statement.c_str()),
                                                               PQclear);
    if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
        throw std::runtime_error(statement + ": " + PQerrorMessage(connection.get()));
    }
}

} // namespace

PostgresDatabase::PostgresDatabase() : PostgresDatabase(std::string("template0")) {}

PostgresDatabase::PostgresDatabase(const PostgresDatabase& other) : PostgresDatabase(other.m_name) {}

PostgresDatabase::PostgresDatabase(const std::string& content)
    : m_name(newName()), m_url(PostgresServer::instance().url(m_name))
{
    // By copied files: the other way writes all of it into the log as well.
    run("CREATE DATABASE " + m_name + " TEMPLATE " + content + " STRATEGY file_copy");
}

PostgresDatabase::~PostgresDatabase()
{
    try {
        run("DROP DATABASE " + m_name + " WITH (FORCE)");
    } catch (const std::runtime_error& error) {
        ADD_FAILURE() << error.what();
    }
}

} // namespace monitorservice::test
