#include "support/PostgresServer.h"

#include "support/ChildProcess.h"
#include "support/PostgresDatabase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libpq-fe.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace monitorservice::test {
namespace {

using ::testing::HasSubstr;

class Client
{
public:
    explicit Client(const std::string& url) : m_connection(PQconnectdb(url.c_str()), PQfinish) {}

    // The first value that the statement gives, or the error.
    std::string run(const std::string& statement) const
    {
        if (PQstatus(m_connection.get()) != CONNECTION_OK) {
            return PQerrorMessage(m_connection.get());
        }
        const std::unique_ptr<PGresult, decltype(&PQclear)> result(
            PQexec(m_connection.get(), statement.c_str()), PQclear);
        switch (PQresultStatus(result.get())) {
        case PGRES_TUPLES_OK:
            return PQntuples(result.get()) > 0 ? PQgetvalue(result.get(), 0, 0) : "none";
        case PGRES_COMMAND_OK:
            return "done";
        default:
            return PQerrorMessage(m_connection.get());
        }
    }

private:
    std::unique_ptr<PGconn, decltype(&PQfinish)> m_connection;
};

TEST(PostgresDatabase, KeepsWhatIsWrittenAsLongAsItIsThere)
{
    std::string url;
    {
        const PostgresDatabase database;
        url = database.url();
        const Client client(url);
        EXPECT_EQ(client.run("CREATE TABLE notes (text text)"), "done");
        EXPECT_EQ(client.run("INSERT INTO notes VALUES ('Grüße')"), "done");
        EXPECT_EQ(Client(url).run("SELECT text FROM notes"), "Grüße");
    }
    EXPECT_THAT(Client(url).run("SELECT 1"), HasSubstr("does not exist"));
}

TEST(PostgresDatabase, IsOfOneTestAlone)
{
    const PostgresDatabase one;
    const PostgresDatabase other;
    EXPECT_EQ(Client(one.url()).run("CREATE TABLE notes (text text)"), "done");
    EXPECT_EQ(Client(other.url()).run("SELECT count(*) FROM pg_tables WHERE schemaname = 'public'"), "0");
}

TEST(PostgresDatabase, GoesWhileClientsAreConnected)
{
    auto database = std::make_unique<PostgresDatabase>();
    const Client client(database->url());
    EXPECT_EQ(client.run("SELECT 1"), "1");
    database.reset();
    EXPECT_THAT(client.run("SELECT 1"), HasSubstr("terminating connection"));
}

TEST(PostgresServer, HasNoPortAndNoSettingThatTestsCouldRelyOn)
{
    const Client client(PostgresServer::instance().url("postgres"));
    EXPECT_EQ(client.run("SHOW listen_addresses"), "");
    EXPECT_EQ(client.run("SHOW timezone"), "Pacific/Chatham");
    EXPECT_EQ(client.run("SELECT date '2015-12-31'"), "31/12/2015");
    EXPECT_EQ(client.run("SELECT lower('I')"), "ı");
    EXPECT_EQ(client.run("SHOW server_encoding"), "UTF8");
}

TEST(PostgresServer, IsGoneAfterTheProcessThatItRunsFor)
{
    ChildProcess process({"/bin/sleep", "1000"});
    ChildProcess server(
        {PYTHON_EXECUTABLE, POSTGRES_SERVER_SCRIPT, "run", POSTGRES_PROGRAMS, std::to_string(process.id())});
    const std::filesystem::path folder = server.readLine();
    ASSERT_TRUE(std::filesystem::exists(folder / ".s.PGSQL.5432")) << server.readErrors();
    process.signal(SIGKILL);
    EXPECT_EQ(server.wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(folder));
}

} // namespace
} // namespace monitorservice::test
