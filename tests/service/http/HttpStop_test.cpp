#include "ServerFixture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <future>

namespace monitorservice {

using namespace test;
using std::chrono::milliseconds;

namespace {

// A handler that answers /held only when it is released.
class Gate
{
public:
    HttpHandler handler()
    {
        return [this](HttpRequest&& request) {
            ++m_entered;
            if (request.target == "/held") {
                m_released.wait();
            }
            return echo(std::move(request));
        };
    }

    void waitForEntry(int count) const
    {
        waitUntil([this, count] { return m_entered == count; });
    }

    int entered() const { return m_entered; }
    void release() { m_release.set_value(); }

private:
    std::promise<void> m_release;
    std::shared_future<void> m_released = m_release.get_future().share();
    std::atomic<int> m_entered{0};
};

bool isRefused(std::uint16_t port)
{
    try {
        const RawClient client(port);
        return false;
    } catch (const std::system_error& failure) {
        return failure.code() == std::errc::connection_refused;
    }
}

bool hasHandler(int signal)
{
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler != SIG_DFL;
}

} // namespace

TEST(HttpStop, FinishesWhatRunsAndClosesWhatIsIdle)
{
    Gate gate;
    HttpServer server = serve({}, gate.handler());
    RawClient idle(server.port());
    idle.send(get("/"));
    idle.readAnswer();
    RawClient running(server.port());
    running.send(get("/held") + get("/pipelined"));
    RawClient arriving(server.port());
    arriving.send("GET /arriving HTTP/1.1\r\n");
    gate.waitForEntry(2);
    waitUntil([&server] { return server.counters().openConnections == 3; });
    // One more exchange on a connection of its own: by then the server has read the bytes sent before.
    ask(server, get("/"));

    server.stop();
    EXPECT_TRUE(idle.isEnded());
    waitUntil([&server] { return isRefused(server.port()); });

    arriving.send("Host: h\r\n\r\n");
    const RawAnswer last = arriving.readAnswer();
    EXPECT_EQ(last.body, echoed("GET", "/arriving"));
    EXPECT_EQ(last.fields.at("connection"), "close");
    gate.release();
    const RawAnswer answer = running.readAnswer();
    EXPECT_EQ(answer.body, echoed("GET", "/held"));
    EXPECT_EQ(answer.fields.at("connection"), "close");
    EXPECT_TRUE(running.isEnded());
    arriving.close();
    running.close();
    server.join();
    EXPECT_EQ(server.counters().openConnections, 0U);
}

TEST(HttpStop, WithoutConnectionsIsImmediate)
{
    HttpServer server = serve();
    server.stop();
    server.stop();
    server.join();
    server.join();
    EXPECT_TRUE(isRefused(server.port()));
}

TEST(HttpStop, ClosesWhatIsNotCompleteAtTheDeadline)
{
    Gate gate;
    HttpLimits limits;
    limits.stopDeadline = milliseconds(50);
    limits.readerThreads = 1;
    HttpServer server = serve(limits, gate.handler());
    RawClient running(server.port());
    running.send(get("/held"));
    gate.waitForEntry(1);
    RawClient waiting(server.port());
    waiting.send(get("/waiting"));
    waitUntil([&server] { return server.counters().requestsInProgress == 2; });

    server.stop();
    EXPECT_TRUE(running.isEnded());
    EXPECT_TRUE(waiting.isEnded());
    std::future<void> joined = std::async(std::launch::async, [&server] { server.join(); });
    EXPECT_EQ(joined.wait_for(milliseconds(100)), std::future_status::timeout) << "a handler still runs";
    gate.release();
    joined.get();
    EXPECT_LE(gate.entered(), 2);
}

TEST(HttpStop, AStalledClientDoesNotHoldTheStop)
{
    HttpLimits limits;
    limits.stopDeadline = milliseconds(50);
    HttpServer server = serve(limits, [](HttpRequest&&) {
        HttpResponse response;
        response.body.assign(40'000'000, 'x');
        return response;
    });
    RawClient deaf(server.port(), 4096);
    deaf.send(get("/"));
    RawClient mute(server.port());
    mute.send("GET");
    waitUntil([&server] { return server.counters().answers[2] == 1; });
    server.stop();
    server.join();
    EXPECT_EQ(server.counters().openConnections, 0U);
}

TEST(HttpStop, AHandlerMayAskForIt)
{
    std::atomic<HttpServer*> self{nullptr};
    HttpServer server = serve({}, [&self](HttpRequest&& request) {
        self.load()->stop();
        return echo(std::move(request));
    });
    self = &server;
    {
        RawClient client(server.port());
        client.send(get("/"));
        EXPECT_EQ(client.readAnswer().status, 200U);
        EXPECT_TRUE(client.isEnded());
    }
    server.join();
}

TEST(HttpStop, TheDestructorStopsAndWaits)
{
    RawAnswer answer;
    std::future<void> client;
    {
        Gate gate;
        const HttpServer server = serve({}, gate.handler());
        client = std::async(std::launch::async, [&answer, port = server.port()] {
            RawClient connection(port);
            connection.send(get("/held"));
            answer = connection.readAnswer();
        });
        gate.waitForEntry(1);
        gate.release();
    }
    client.get();
    EXPECT_EQ(answer.body, echoed("GET", "/held"));
}

TEST(HttpStop, ASignalStopsIt)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        HttpServer server = serve();
        std::future<void> run = std::async(std::launch::async, [&server] { server.runUntilSignal(); });
        waitUntil([signal] { return hasHandler(signal); });
        EXPECT_EQ(ask(server, get("/")).status, 200U);
        ASSERT_EQ(kill(getpid(), signal), 0);
        run.get();
        EXPECT_TRUE(isRefused(server.port()));
        // What a second signal does is the system's default again.
        EXPECT_FALSE(hasHandler(SIGTERM));
        EXPECT_FALSE(hasHandler(SIGINT));
    }
}

TEST(HttpStop, RunningUntilASignalEndsWithAStopToo)
{
    HttpServer server = serve();
    std::future<void> run = std::async(std::launch::async, [&server] { server.runUntilSignal(); });
    waitUntil([] { return hasHandler(SIGTERM); });
    server.stop();
    run.get();
    server.runUntilSignal();
    EXPECT_FALSE(hasHandler(SIGTERM));
}

} // namespace monitorservice
