#include "ServerFixture.h"

#include <gmock/gmock.h>

#include <future>
#include <vector>

namespace monitorservice {

using namespace test;

namespace {

// A request whose header is exactly so many bytes long.
std::string getWithHeaderOf(std::size_t size)
{
    const std::string shortest = get("/", "X: \r\n");
    return get("/", "X: " + std::string(size - shortest.size(), 'x') + "\r\n");
}

std::string targetOf(std::size_t size)
{
    return "/" + std::string(size - 1, 'x');
}

std::string chunk(const std::string& text)
{
    std::array<char, 20> size{};
    std::snprintf(size.data(), size.size(), "%zx\r\n", text.size());
    return size.data() + text + "\r\n";
}

} // namespace

TEST(HttpLimits, HeaderAtItsLimit)
{
    HttpLimits limits;
    limits.largestHeader = 5000;
    const HttpServer server = serve(limits);
    EXPECT_EQ(ask(server, getWithHeaderOf(4999)).status, 200U);
    EXPECT_EQ(ask(server, getWithHeaderOf(5000)).status, 200U);
    EXPECT_EQ(ask(server, getWithHeaderOf(5001)).status, 431U);
    EXPECT_EQ(ask(server, getWithHeaderOf(500'000)).status, 431U);
}

TEST(HttpLimits, HeaderWithoutAnEnd)
{
    HttpLimits limits;
    limits.largestHeader = 5000;
    const HttpServer server = serve(limits);
    EXPECT_EQ(ask(server, getWithHeaderOf(6000).substr(0, 5000)).status, 431U);
    EXPECT_EQ(ask(server, "GET " + targetOf(5000)).status, 414U);
    EXPECT_EQ(ask(server, get(targetOf(500'000))).status, 414U);
}

TEST(HttpLimits, WhatLiesBeyondTheLargestHeaderIsNotLookedAt)
{
    HttpLimits limits;
    limits.largestHeader = 5000;
    const HttpServer server = serve(limits);
    EXPECT_EQ(ask(server, getWithHeaderOf(6000) + "a line without its carriage return\n").status, 431U);
    EXPECT_EQ(ask(server, getWithHeaderOf(5000).substr(0, 4998) + "\n").status, 400U);
    EXPECT_EQ(ask(server, getWithHeaderOf(6000).substr(0, 5000) + "\n\n").status, 431U);
}

TEST(HttpLimits, FieldsAtTheirLimit)
{
    HttpLimits limits;
    limits.mostFields = 10;
    const HttpServer server = serve(limits);
    const auto withFields = [](int count) {
        std::string fields;
        for (int i = 1; i < count; ++i) {
            fields += "X: 1\r\n";
        }
        return get("/", fields);
    };
    EXPECT_EQ(ask(server, withFields(9)).status, 200U);
    EXPECT_EQ(ask(server, withFields(10)).status, 200U);
    EXPECT_EQ(ask(server, withFields(11)).status, 431U);
}

TEST(HttpLimits, TargetAtItsLimit)
{
    HttpLimits limits;
    limits.longestTarget = 3000;
    const HttpServer server = serve(limits);
    EXPECT_EQ(ask(server, get(targetOf(2999))).status, 200U);
    EXPECT_EQ(ask(server, get(targetOf(3000))).status, 200U);
    EXPECT_EQ(ask(server, get(targetOf(3001))).status, 414U);
}

TEST(HttpLimits, TheUsualLimitsTakeALongWhereDocument)
{
    const HttpServer server = serve();
    std::string where;
    for (int i = 0; i < 8 * 1024; ++i) {
        where += "%22";
    }
    EXPECT_EQ(ask(server, get("/monitor-service/projects/p/pointLocations?where=" + where)).status, 200U);
}

TEST(HttpLimits, BodyAtItsLimit)
{
    HttpLimits limits;
    limits.largestBody = 100'000;
    const HttpServer server = serve(limits);
    for (const std::size_t size : {99'999U, 100'000U}) {
        const std::string body(size, 'b');
        EXPECT_EQ(ask(server, post("/", body)).body, echoed("POST", "/", body));
        EXPECT_EQ(ask(server, postChunked("/", chunk(body) + "0\r\n\r\n")).body, echoed("POST", "/", body));
        const std::string cut = chunk(body.substr(0, 60'000)) + chunk(body.substr(60'000)) + "0\r\n\r\n";
        EXPECT_EQ(ask(server, postChunked("/", cut)).body, echoed("POST", "/", body));
    }
    const std::string body(100'001, 'b');
    EXPECT_EQ(ask(server, post("/", body)).status, 413U);
    EXPECT_EQ(ask(server, postChunked("/", chunk(body) + "0\r\n\r\n")).status, 413U);
    EXPECT_EQ(ask(server, postChunked("/", chunk(body.substr(0, 100'000)) + chunk("b") + "0\r\n\r\n")).status,
              413U);
    EXPECT_EQ(server.counters().requests, 6U);
}

TEST(HttpLimits, TheUsualOnesHoldToTheByte)
{
    const HttpLimits limits;
    const HttpServer server = serve(limits, [](HttpRequest&& request) {
        HttpResponse response;
        response.body = std::to_string(request.body.size());
        return response;
    });
    EXPECT_EQ(ask(server, getWithHeaderOf(limits.largestHeader - 1)).status, 200U);
    EXPECT_EQ(ask(server, getWithHeaderOf(limits.largestHeader)).status, 200U);
    EXPECT_EQ(ask(server, getWithHeaderOf(limits.largestHeader + 1)).status, 431U);
    EXPECT_EQ(ask(server, get(targetOf(limits.longestTarget))).status, 200U);
    EXPECT_EQ(ask(server, get(targetOf(limits.longestTarget + 1))).status, 414U);
    for (const std::size_t size : {limits.largestBody - 1, limits.largestBody}) {
        EXPECT_EQ(ask(server, post("/", std::string(size, 'b'))).body, std::to_string(size));
        EXPECT_EQ(ask(server, postChunked("/", chunk(std::string(size, 'b')) + "0\r\n\r\n")).body,
                  std::to_string(size));
    }
    EXPECT_EQ(ask(server, post("/", std::string(limits.largestBody + 1, 'b'))).status, 413U);
    EXPECT_EQ(
        ask(server, postChunked("/", chunk(std::string(limits.largestBody + 1, 'b')) + "0\r\n\r\n")).status,
        413U);
}

TEST(HttpLimits, TooLargeABodyIsRefusedBeforeItIsSent)
{
    HttpLimits limits;
    limits.largestBody = 10;
    const HttpServer server = serve(limits);
    EXPECT_EQ(ask(server, "POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 11\r\n\r\n").status, 413U);
    EXPECT_EQ(
        ask(server, "POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 99999999999999999999999\r\n\r\n").status,
        413U);
}

TEST(HttpLimits, AClientThatSendsTooLargeABodyStillReadsTheAnswer)
{
    HttpLimits limits;
    limits.largestBody = 10;
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    client.send(post("/", std::string(5'000'000, 'b')));
    EXPECT_EQ(client.readAnswer().status, 413U);
}

TEST(HttpLimits, BodiesTogetherAtTheirLimit)
{
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    HttpLimits limits;
    limits.largestBodiesTogether = 100'000;
    const HttpServer server = serve(limits, [released](HttpRequest&& request) {
        if (request.target == "/held") {
            released.wait();
        }
        return echo(std::move(request));
    });
    RawClient holder(server.port());
    holder.send(post("/held", std::string(60'000, 'b')));
    waitUntil([&server] { return server.counters().requestsInProgress == 1; });

    EXPECT_EQ(ask(server, post("/", std::string(40'000, 'b'))).status, 200U);
    const RawAnswer refused = ask(server, post("/", std::string(40'001, 'b')));
    EXPECT_EQ(refused.status, 503U);
    EXPECT_EQ(refused.fields.at("retry-after"), "1");

    release.set_value();
    EXPECT_EQ(holder.readAnswer().status, 200U);
    EXPECT_EQ(ask(server, post("/", std::string(40'001, 'b'))).status, 200U);
    EXPECT_EQ(server.counters().bodyBytes, 0U);
}

TEST(HttpLimits, ConnectionsAtTheirLimit)
{
    HttpLimits limits;
    limits.mostConnections = 3;
    const HttpServer server = serve(limits);
    std::vector<RawClient> clients;
    for (int i = 0; i < 3; ++i) {
        clients.emplace_back(server.port());
        clients.back().send(get("/"));
        EXPECT_EQ(clients.back().readAnswer().status, 200U);
    }
    {
        RawClient refused(server.port());
        const RawAnswer answer = refused.readAnswer();
        EXPECT_EQ(answer.status, 503U);
        EXPECT_EQ(answer.fields.at("retry-after"), "1");
        EXPECT_EQ(answer.fields.at("connection"), "close");
        EXPECT_TRUE(refused.isEnded());
    }
    clients.front().send(get("/"));
    EXPECT_EQ(clients.front().readAnswer().status, 200U);

    clients.pop_back();
    waitUntil([&server] { return server.counters().openConnections == 2; });
    EXPECT_EQ(ask(server, get("/")).status, 200U);
}

TEST(HttpLimits, ConnectionsFarBeyondTheLimitAreClosed)
{
    HttpLimits limits;
    limits.mostConnections = 1;
    limits.lingerDeadline = std::chrono::minutes(10);
    const HttpServer server = serve(limits);
    std::vector<RawClient> clients;
    clients.reserve(65);
    for (int i = 0; i < 65; ++i) {
        clients.emplace_back(server.port());
    }
    waitUntil([&server] { return server.counters().openConnections == 65; });
    EXPECT_TRUE(RawClient(server.port()).isEnded());
}

} // namespace monitorservice
