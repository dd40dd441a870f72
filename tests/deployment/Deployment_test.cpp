#include "Deployment.h"

#include "service/durability/DeliveryRun.h"
#include "service/durability/DurabilityTest.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>

namespace monitorservice::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using ::testing::HasSubstr;

milliseconds since(steady_clock::time_point begin)
{
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
}

unsigned healthStatus(std::uint16_t port)
{
    RawClient client(port);
    client.send("GET /healthz HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    return client.readAnswer().status;
}

class DeploymentTest : public DurabilityTest
{
protected:
    DeploymentTest()
    {
        useSite(makeSite(deployment.url(), clientCount));
        deployment.start();
    }

    CommandResult admin(std::vector<std::string> command) const
    {
        command.insert(command.begin(), {"admin", "--store-url-file", deployment.urlFile()});
        return run(command);
    }

    // One request on a connection of its own.
    static RawAnswer call(std::uint16_t port, const std::string& token, const std::string& method,
                          const std::string& path, const std::string& body = {})
    {
        return ClientConnection(port, token).call(method, path, body);
    }

    // Something small that is new each time; deliveries are not concerned.
    RawAnswer write()
    {
        const std::string name = R"({"name": "Monitoring )" + std::to_string(++m_writes) + R"("})";
        return call(deployment.port(), site->token, "PUT", "cells/" + site->targets.front().cell, name);
    }

    static void operatorGoesOnWithout(const PostgresServer& server)
    {
        Deployment::ask(server, "ALTER SYSTEM SET synchronous_standby_names = ''");
        Deployment::ask(server, "SELECT pg_reload_conf()");
    }

    // Until the server waits for its standby with each commit.
    static void awaitStandby(const PostgresServer& server)
    {
        while (Deployment::ask(server, "SELECT sync_state FROM pg_stat_replication") != "sync") {
            std::this_thread::sleep_for(milliseconds(10));
        }
    }

    Deployment deployment;

private:
    int m_writes = 0;
};

TEST_F(DeploymentTest, GoesOnWithoutAnInstanceThatWasKilled)
{
    const int cycles = repetitions(3);
    for (int i = 0; i < cycles && !HasFailure(); ++i) {
        const std::size_t instance = static_cast<std::size_t>(i) % Deployment::instanceCount;
        {
            const DeliveryRun run(clients, deployment.port(), site->token);
            run.waitForAnswers(random(1, 8));
            deployment.killInstance(instance);
        }
        holdsWhatItMust(deployment.url());
        const std::size_t refused = tally().refused;
        {
            const DeliveryRun run(clients, deployment.port(), site->token);
            run.waitForAnswers(20);
        }
        EXPECT_EQ(tally().refused, refused) << "what reached no instance was not sent to another one";
        deployment.startInstance(instance);
        EXPECT_EQ(call(deployment.instancePort(instance), site->token, "GET", "about").status, 200U);
        holdsWhatItMust(deployment.url());
    }
    EXPECT_GE(tally().answered, static_cast<std::size_t>(cycles) * 20);
    print("kill -9 of one of three instances, " + std::to_string(cycles) + " times", tally());
    EXPECT_TRUE(deployment.stop());
}

TEST_F(DeploymentTest, ATokenThatIsRevokedIsRefusedByAllInstances)
{
    const std::string token = admin({"token", "create", "--owner", "Grace"}).line();
    std::vector<ClientConnection> connections;
    for (std::size_t i = 0; i < Deployment::instanceCount; ++i) {
        connections.emplace_back(deployment.instancePort(i), token);
        EXPECT_EQ(connections.back().call("GET", "about").status, 200U);
    }
    const std::string list = admin({"token", "list"}).out;
    const std::size_t line = list.rfind('\n', list.find("Grace")) + 1;
    EXPECT_EQ(admin({"token", "revoke", list.substr(line, list.find(' ', line) - line)}).exitCode, 0) << list;
    for (ClientConnection& connection : connections) {
        EXPECT_EQ(connection.call("GET", "about").status, 401U);
    }
    EXPECT_EQ(call(deployment.port(), token, "GET", "about").status, 401U);
    EXPECT_EQ(call(deployment.port(), site->token, "GET", "about").status, 200U);
    EXPECT_TRUE(deployment.stop());
}

TEST_F(DeploymentTest, APromotedStandbyHoldsWhatWasAnsweredAndIsWrittenTo)
{
    {
        const DeliveryRun run(clients, deployment.port(), site->token);
        run.waitForAnswers(20);
        deployment.primary().kill();
    }
    // Answered by the balancer alone, as the instances would say that they live.
    while (healthStatus(deployment.port()) != 503U) {
        std::this_thread::sleep_for(milliseconds(10));
    }
    PostgresServer& server = deployment.standby();
    operatorGoesOnWithout(server); // before anything waits for a standby that there is not
    const auto begin = steady_clock::now();
    EXPECT_EQ(Deployment::ask(server, "SELECT pg_promote()"), "t");
    const milliseconds promoted = since(begin);
    while (write().status != 200U) {
        ASSERT_LT(since(begin), std::chrono::seconds(60));
        std::this_thread::sleep_for(milliseconds(10));
    }
    const milliseconds written = since(begin);
    holdsWhatItMust(deployment.url());
    const std::size_t refused = tally().refused;
    {
        const DeliveryRun run(clients, deployment.port(), site->token);
        run.waitForAnswers(20);
    }
    EXPECT_EQ(tally().refused, refused);
    holdsWhatItMust(deployment.url());
    print("kill -9 of the primary, its standby promoted", tally());
    std::cout << "promoted within " << promoted.count() << " ms, the first write answered 2xx after "
              << written.count() << " ms" << std::endl;
    EXPECT_TRUE(deployment.stop());
}

TEST_F(DeploymentTest, WritesAreNotConfirmedWhileTheStandbyIsAway)
{
    awaitStandby(deployment.primary());
    deployment.standby().kill();
    const auto begin = steady_clock::now();
    const RawAnswer unconfirmed = write();
    std::cout << "a write without the standby: " << unconfirmed.status << " after " << since(begin).count()
              << " ms" << std::endl;
    EXPECT_EQ(unconfirmed.status, 503U);
    EXPECT_THAT(unconfirmed.body, HasSubstr("the store has not confirmed what was written"));
    EXPECT_EQ(call(deployment.port(), site->token, "GET", "about").status, 200U);
    operatorGoesOnWithout(deployment.primary());
    EXPECT_EQ(write().status, 200U);
    deployment.standby().start();
    Deployment::ask(deployment.primary(), "ALTER SYSTEM RESET synchronous_standby_names");
    Deployment::ask(deployment.primary(), "SELECT pg_reload_conf()");
    awaitStandby(deployment.primary());
    EXPECT_EQ(write().status, 200U);
    EXPECT_TRUE(deployment.stop());
}

} // namespace
} // namespace monitorservice::test
