#include "ServerFixture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <vector>

namespace monitorservice {

using namespace test;
using std::chrono::milliseconds;

namespace {

// Sends a piece again and again until the server has had enough; the answer is read afterwards.
void sendUntilRefused(RawClient& client, const HttpServer& server, const std::string& piece)
{
    while (server.counters().answers[4] == 0 && client.send(piece)) {
        std::this_thread::sleep_for(milliseconds(5));
    }
}

void expectAllClosed(const HttpServer& server)
{
    waitUntil([&server] { return server.counters().openConnections == 0; });
}

} // namespace

TEST(HttpDeadlines, AnIdleConnectionIsClosedWithoutAWord)
{
    HttpLimits limits;
    limits.idleDeadline = milliseconds(100);
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    EXPECT_TRUE(client.isEnded());
    expectAllClosed(server);
}

TEST(HttpDeadlines, AConnectionIsIdleAgainAfterAnAnswer)
{
    HttpLimits limits;
    limits.idleDeadline = milliseconds(1500);
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    client.send(get("/") + "\r\n");
    EXPECT_EQ(client.readAnswer().status, 200U);
    EXPECT_TRUE(client.isEnded());
}

TEST(HttpDeadlines, AHeaderThatStopsIsAnswered408)
{
    HttpLimits limits;
    limits.headerDeadline = milliseconds(50);
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    client.send("GET / HTTP/1.1\r\nHost:");
    EXPECT_EQ(client.readAnswer().status, 408U);
    EXPECT_TRUE(client.isEnded());
    client.close();
    expectAllClosed(server);
}

TEST(HttpDeadlines, AHeaderThatTricklesIsAnswered408)
{
    HttpLimits limits;
    limits.headerDeadline = milliseconds(100);
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    client.send("GET / HTTP/1.1\r\n");
    sendUntilRefused(client, server, "X: 1\r\n");
    EXPECT_EQ(client.readAnswer().status, 408U);
    EXPECT_EQ(server.counters().requests, 0U);
}

TEST(HttpDeadlines, ABodyThatStopsIsAnswered408)
{
    HttpLimits limits;
    limits.progressDeadline = milliseconds(50);
    const HttpServer server = serve(limits);
    for (const std::string& part :
         {post("/", "body").substr(0, post("/", "body").size() - 1), postChunked("/", "4\r\nbo")}) {
        RawClient client(server.port());
        client.send(part);
        EXPECT_EQ(client.readAnswer().status, 408U);
        EXPECT_TRUE(client.isEnded());
    }
    expectAllClosed(server);
    EXPECT_EQ(server.counters().bodyBytes, 0U);
}

TEST(HttpDeadlines, ABodyThatIsWaitedForButNotSentIsAnswered408)
{
    HttpLimits limits;
    limits.progressDeadline = milliseconds(50);
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: h\r\nExpect: 100-continue\r\nContent-Length: 4\r\n\r\n");
    EXPECT_EQ(client.readAnswer(false).status, 100U);
    EXPECT_EQ(client.readAnswer().status, 408U);
}

TEST(HttpDeadlines, ABodyThatTricklesIsAnswered408)
{
    HttpLimits limits;
    limits.progressDeadline = milliseconds(100);
    limits.leastProgress = 1'000'000;
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 60000000\r\n\r\n");
    sendUntilRefused(client, server, "x");
    EXPECT_EQ(client.readAnswer().status, 408U);
}

TEST(HttpDeadlines, ABodyThatProgressesTooLongIsAnswered408)
{
    HttpLimits limits;
    limits.progressDeadline = milliseconds(100);
    limits.leastProgress = 0;
    limits.bodyDeadline = milliseconds(400);
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 60000000\r\n\r\n");
    sendUntilRefused(client, server, "x");
    EXPECT_EQ(client.readAnswer().status, 408U);
}

TEST(HttpDeadlines, ABodyThatProgressesIsTaken)
{
    HttpLimits limits;
    limits.progressDeadline = milliseconds(50);
    limits.leastProgress = 0;
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 5\r\n\r\n");
    for (int i = 0; i < 5; ++i) {
        std::this_thread::sleep_for(milliseconds(60));
        client.send("b");
    }
    EXPECT_EQ(client.readAnswer().body, echoed("POST", "/", "bbbbb"));
}

TEST(HttpDeadlines, AHandlerHasNoDeadlineOfTheConnection)
{
    HttpLimits limits;
    limits.idleDeadline = limits.headerDeadline = limits.progressDeadline = limits.bodyDeadline =
        milliseconds(200);
    const HttpServer server = serve(limits, [](HttpRequest&& request) {
        std::this_thread::sleep_for(milliseconds(600));
        return echo(std::move(request));
    });
    EXPECT_EQ(ask(server, get("/")).body, echoed("GET", "/"));
}

TEST(HttpDeadlines, AnAnswerThatIsNotTakenIsDropped)
{
    HttpLimits limits;
    limits.progressDeadline = milliseconds(50);
    const HttpServer server = serve(limits, [](HttpRequest&&) {
        HttpResponse response;
        response.body.assign(40'000'000, 'x');
        return response;
    });
    RawClient client(server.port(), 4096);
    client.send(get("/"));
    waitUntil([&server] { return server.counters().answers[2] == 1; });
    expectAllClosed(server);
    EXPECT_THROW(client.readAnswer(), std::exception);
}

TEST(HttpDeadlines, AnAnswerThatIsTakenSlowlyArrivesWhole)
{
    HttpLimits limits;
    limits.progressDeadline = milliseconds(50);
    limits.leastProgress = 0;
    const HttpServer server = serve(limits, [](HttpRequest&&) {
        HttpResponse response;
        response.body.assign(20'000'000, 'x');
        return response;
    });
    RawClient client(server.port(), 4096);
    client.send(get("/"));
    std::this_thread::sleep_for(milliseconds(300));
    EXPECT_EQ(client.readAnswer().body.size(), 20'000'000U);
}

TEST(HttpDeadlines, AClientThatKeepsItsSideOpenIsClosedAfterAnError)
{
    HttpLimits limits;
    limits.lingerDeadline = milliseconds(50);
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    client.send(get("/%"));
    EXPECT_EQ(client.readAnswer().status, 400U);
    expectAllClosed(server);
    // Bytes that go on arriving do not keep it open either.
    RawClient talkative(server.port());
    talkative.send(get("/%"));
    while (talkative.send("more")) {
        std::this_thread::sleep_for(milliseconds(1));
    }
    expectAllClosed(server);
}

TEST(HttpDeadlines, SlowClientsDelayNobody)
{
    const HttpServer server = serve();
    std::vector<RawClient> slow;
    for (int i = 0; i < 100; ++i) {
        slow.emplace_back(server.port());
        slow.back().send(i % 2 == 0 ? "GET / HTTP/1.1\r\nX: "
                                    : "POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 9\r\n\r\n1");
    }
    EXPECT_EQ(ask(server, get("/")).status, 200U);
    for (RawClient& client : slow) {
        client.close();
    }
    expectAllClosed(server);
}

TEST(HttpDeadlines, ARequestForWhichNoThreadIsFreeInTimeIsToldToComeAgain)
{
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    std::atomic<int> entered{0};
    HttpLimits limits;
    limits.writerThreads = 1;
    limits.queueDeadline = milliseconds(50);
    const HttpServer server = serve(limits, [&entered, released](HttpRequest&& request) {
        ++entered;
        released.wait();
        return echo(std::move(request));
    });
    // Gone before the server, which waits for its handlers.
    std::promise<void> releasing = std::move(release);
    RawClient running(server.port());
    running.send(post("/", "first"));
    // On a busy machine the thread may come too late for the first one, too.
    for (std::uint64_t refused = 0; entered == 0; std::this_thread::sleep_for(milliseconds(1))) {
        if (server.counters().answers[5] > refused) {
            ++refused;
            EXPECT_EQ(running.readAnswer().status, 503U);
            running.send(post("/", "first"));
        }
    }
    RawClient waiting(server.port());
    waiting.send(post("/", "second"));
    waitUntil([&server] { return server.counters().requestsInProgress == 2; });
    std::this_thread::sleep_for(2 * limits.queueDeadline);
    releasing.set_value();

    EXPECT_EQ(running.readAnswer().body, echoed("POST", "/", "first"));
    const RawAnswer answer = waiting.readAnswer();
    EXPECT_EQ(answer.status, 503U);
    EXPECT_EQ(answer.fields.count("retry-after"), 1U);
    EXPECT_EQ(entered, 1) << "what is told to come again has not been begun";
    waiting.send(get("/"));
    EXPECT_EQ(waiting.readAnswer().statusLine.substr(0, 8), "HTTP/1.1") << "the connection stays";
}

} // namespace monitorservice
