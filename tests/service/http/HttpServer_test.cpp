#include "ServerFixture.h"

#include <gmock/gmock.h>

#include <future>
#include <numeric>
#include <vector>

namespace monitorservice {

using namespace test;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

namespace {

// What a request is answered while twice as many others as may run at a time take their time.
unsigned statusBeside(const std::string& slowRequest, const std::string& request)
{
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    HttpLimits limits;
    limits.readerThreads = limits.writerThreads = 2;
    const HttpServer server = serve(limits, [released](HttpRequest&& taken) {
        if (taken.target == "/slow") {
            released.wait();
        }
        return echo(std::move(taken));
    });
    // Gone before the server, which waits for its handlers.
    const std::promise<void> releasedAtTheEnd = std::move(release);
    std::vector<RawClient> slow;
    for (std::size_t i = 0; i < 4; ++i) {
        slow.emplace_back(server.port()).send(slowRequest);
    }
    waitUntil([&] { return server.counters().requestsInProgress == slow.size(); });
    RawClient client(server.port());
    client.send(request);
    return client.readAnswer(false).status;
}

} // namespace

TEST(HttpServer, HandsTheRequestToTheHandler)
{
    HttpRequest seen;
    const HttpServer server = serve({}, [&seen](HttpRequest&& request) {
        seen = std::move(request);
        return HttpResponse();
    });
    ask(server, "POST /a/%2e%2e/b?x=1&x=2 HTTP/1.1\r\nHost: h\r\nAuthorization: Bearer t\r\n"
                "Content-Type: application/json\r\nContent-Length: 2\r\n\r\n{}");
    EXPECT_EQ(seen.method, "POST");
    EXPECT_EQ(seen.target, "/a/%2e%2e/b?x=1&x=2");
    EXPECT_THAT(seen.path, testing::ElementsAre("a", "..", "b"));
    EXPECT_THAT(seen.parameters, testing::ElementsAre(Pair("x", "1"), Pair("x", "2")));
    EXPECT_EQ(seen.authorization, "Bearer t");
    EXPECT_EQ(seen.contentType, "application/json");
    EXPECT_EQ(seen.body, "{}");
}

TEST(HttpServer, SendsWhatTheHandlerAnswers)
{
    const HttpServer server = serve({}, [](HttpRequest&&) {
        HttpResponse response;
        response.status = 405;
        response.body = "{}";
        response.headers = {{"Allow", "GET, PUT"}, {"X-Empty", ""}};
        return response;
    });
    const RawAnswer answer = ask(server, get("/"));
    EXPECT_EQ(answer.statusLine, "HTTP/1.1 405 Method Not Allowed");
    EXPECT_EQ(answer.body, "{}");
    EXPECT_THAT(answer.fields, testing::IsSupersetOf({Pair("allow", "GET, PUT"), Pair("x-empty", ""),
                                                      Pair("content-type", "application/json; charset=utf-8"),
                                                      Pair("content-length", "2")}));
    EXPECT_EQ(answer.fields.at("date").size(), std::string("Sun, 06 Nov 1994 08:49:37 GMT").size());
    EXPECT_EQ(answer.fields.count("connection"), 0U);
}

TEST(HttpServer, SendsNoBodyWithNoContent)
{
    const HttpServer server = serve({}, [](HttpRequest&& request) {
        HttpResponse response;
        response.status = request.target == "/204" ? 204 : 304;
        response.body = "must not be sent";
        return response;
    });
    RawClient client(server.port());
    client.send(get("/204") + get("/304", "Connection: close\r\n"));
    for (const unsigned status : {204U, 304U}) {
        const RawAnswer answer = client.readAnswer();
        EXPECT_EQ(answer.status, status);
        EXPECT_EQ(answer.fields.count("content-length"), 0U);
    }
    EXPECT_TRUE(client.isEnded());
}

TEST(HttpServer, KeepsAConnectionForManyRequests)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    for (int i = 0; i < 100; ++i) {
        const std::string target = "/" + std::to_string(i);
        client.send(i % 2 == 0 ? get(target)
                               : post(target, std::string(static_cast<std::size_t>(i) * 100, 'x')));
        EXPECT_THAT(client.readAnswer().body, HasSubstr(target + "\n"));
    }
    EXPECT_EQ(server.counters().connections, 1U);
    EXPECT_EQ(server.counters().requests, 100U);
    EXPECT_EQ(server.counters().answers[2], 100U);
}

TEST(HttpServer, ClosesWhenAskedTo)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    client.send(get("/", "Connection: close\r\n"));
    EXPECT_THAT(client.readAnswer().fields, testing::Contains(Pair("connection", "close")));
    EXPECT_TRUE(client.isEnded());
}

TEST(HttpServer, AnswersPipelinedRequestsInOrder)
{
    // The first is the slowest: an answer that overtook another would show.
    const HttpServer server = serve({}, [](HttpRequest&& request) {
        if (request.target == "/0") {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return echo(std::move(request));
    });
    RawClient client(server.port());
    std::string requests;
    for (int i = 0; i < 30; ++i) {
        const std::string target = "/" + std::to_string(i);
        requests += i % 3 == 0   ? get(target)
                    : i % 3 == 1 ? post(target, "body")
                                 : postChunked(target, "2\r\nbo\r\n2;a=b\r\ndy\r\n0\r\nTrailer: x\r\n\r\n");
    }
    client.send(requests);
    for (int i = 0; i < 30; ++i) {
        const std::string target = "/" + std::to_string(i);
        EXPECT_EQ(client.readAnswer().body,
                  i % 3 == 0 ? echoed("GET", target) : echoed("POST", target, "body"));
    }
}

TEST(HttpServer, AcceptsARequestByteForByte)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    for (const char byte : post("/a", "b") + postChunked("/c", "1\r\nd\r\n0\r\n\r\n")) {
        client.send(std::string_view(&byte, 1));
    }
    EXPECT_EQ(client.readAnswer().body, echoed("POST", "/a", "b"));
    EXPECT_EQ(client.readAnswer().body, echoed("POST", "/c", "d"));
}

TEST(HttpServer, IgnoresEmptyLinesBeforeARequest)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    client.send("\r\n" + get("/a") + "\r\n\r\n");
    EXPECT_EQ(client.readAnswer().body, echoed("GET", "/a"));
    client.send("\r");
    client.send("\n" + get("/b"));
    EXPECT_EQ(client.readAnswer().body, echoed("GET", "/b"));
}

TEST(HttpServer, AnswersHeadLikeGetWithoutTheBody)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    client.send("HEAD /a HTTP/1.1\r\nHost: h\r\n\r\n" + get("/b"));
    const RawAnswer head = client.readAnswer(false);
    EXPECT_EQ(head.status, 200U);
    EXPECT_EQ(head.fields.at("content-length"), std::to_string(echoed("GET", "/a").size()));
    EXPECT_EQ(client.readAnswer().body, echoed("GET", "/b"));
}

TEST(HttpServer, AnswersVersion10AndCloses)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    client.send("GET /a HTTP/1.0\r\nConnection: keep-alive\r\n\r\n");
    const RawAnswer answer = client.readAnswer();
    EXPECT_EQ(answer.body, echoed("GET", "/a"));
    EXPECT_EQ(answer.fields.at("connection"), "close");
    EXPECT_TRUE(client.isEnded());
}

TEST(HttpServer, AnswersAClientThatHasClosedItsSide)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    client.send(post("/a", "b"));
    client.shutdownSend();
    EXPECT_EQ(client.readAnswer().body, echoed("POST", "/a", "b"));
    EXPECT_TRUE(client.isEnded());
}

TEST(HttpServer, HandsUnknownMethodsToTheHandler)
{
    const HttpServer server = serve();
    EXPECT_EQ(ask(server, "PROPFIND /a HTTP/1.1\r\nHost: h\r\n\r\n").body, echoed("PROPFIND", "/a"));
    EXPECT_EQ(ask(server, "get /a HTTP/1.1\r\nHost: h\r\n\r\n").body, echoed("get", "/a"));
    const RawAnswer overridden = ask(server, get("/a", "X-HTTP-Method-Override: DELETE\r\n"));
    EXPECT_EQ(overridden.body, echoed("GET", "/a"));
}

TEST(HttpServer, SendsContinueOnlyWhenItIsWaitedFor)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    client.send("POST /a HTTP/1.1\r\nHost: h\r\nExpect: 100-continue\r\nContent-Length: 4\r\n\r\n");
    EXPECT_EQ(client.readAnswer(false).statusLine, "HTTP/1.1 100 Continue");
    client.send("body");
    EXPECT_EQ(client.readAnswer().body, echoed("POST", "/a", "body"));

    client.send(post("/b", "body", "Expect: 100-continue\r\n"));
    EXPECT_EQ(client.readAnswer().body, echoed("POST", "/b", "body"));

    client.send(get("/c", "Expect: 100-continue\r\n"));
    EXPECT_EQ(client.readAnswer().body, echoed("GET", "/c"));
}

TEST(HttpServer, RefusesInsteadOfContinuing)
{
    HttpLimits limits;
    limits.largestBody = 10;
    const HttpServer server = serve(limits);
    RawClient client(server.port());
    client.send("POST /a HTTP/1.1\r\nHost: h\r\nExpect: 100-continue\r\nContent-Length: 11\r\n\r\n");
    EXPECT_EQ(client.readAnswer().status, 413U);
    EXPECT_TRUE(client.isEnded());
    EXPECT_EQ(ask(server, post("/%", "", "Expect: 100-continue\r\n")).status, 400U);
}

TEST(HttpServer, AHandlerThatThrowsIsAnswered500WithoutDetails)
{
    const HttpServer server = serve({}, [](HttpRequest&& request) -> HttpResponse {
        if (request.target.substr(0, 6) == "/throw") {
            throw std::runtime_error("secret\ndetail");
        }
        if (request.target == "/other") {
            throw 42; // NOLINT(hicpp-exception-baseclass): what the test is about
        }
        return echo(std::move(request));
    });
    RawClient client(server.port());
    testing::internal::CaptureStderr();
    client.send(get("/throw?token=canary") + get("/other") + get("/fine"));
    EXPECT_EQ(client.readAnswer().body, R"({"message":"internal error","status":500})");
    EXPECT_EQ(client.readAnswer().status, 500U);
    EXPECT_EQ(client.readAnswer().body, echoed("GET", "/fine"));
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_THAT(log, HasSubstr("http: GET /throw failed: secret?detail\n"));
    EXPECT_THAT(log, HasSubstr("http: GET /other failed: "));
    EXPECT_THAT(log, Not(HasSubstr("canary")));
    EXPECT_EQ(server.counters().answers[5], 2U);
}

TEST(HttpServer, AnAnswerThatWouldBreakTheFramingBecomesA500)
{
    const HttpServer server = serve({}, [](HttpRequest&& request) {
        HttpResponse response;
        if (request.target == "/header") {
            response.headers.emplace_back("X-A", "b\r\nX-Injected: 1");
        } else if (request.target == "/type") {
            response.contentType = "a\nb";
        } else {
            response.status = static_cast<unsigned>(std::stoul(request.target.substr(1)));
        }
        return response;
    });
    testing::internal::CaptureStderr();
    for (const char* target : {"/header", "/type", "/0", "/100", "/199", "/600"}) {
        const RawAnswer answer = ask(server, get(target));
        EXPECT_EQ(answer.status, 500U) << target;
        EXPECT_EQ(answer.fields.count("x-injected"), 0U);
    }
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("bad status or header"));
}

TEST(HttpServer, SendsALargeAnswerWhole)
{
    std::string large;
    large.resize(40'000'000);
    for (std::size_t i = 0; i < large.size(); ++i) {
        large[i] = static_cast<char>('a' + i % 23);
    }
    const HttpServer server = serve({}, [&large](HttpRequest&&) {
        HttpResponse response;
        response.body = large;
        return response;
    });
    RawClient client(server.port());
    client.send(get("/1") + get("/2"));
    EXPECT_TRUE(client.readAnswer().body == large);
    EXPECT_TRUE(client.readAnswer().body == large);
}

TEST(HttpServer, AClientThatLeavesInTheMiddleOfAnAnswerIsForgotten)
{
    const HttpServer server = serve({}, [](HttpRequest&&) {
        HttpResponse response;
        response.body.assign(40'000'000, 'x');
        return response;
    });
    for (int i = 0; i < 10; ++i) {
        RawClient client(server.port(), 4096);
        client.send(get("/"));
        client.readBytes(100);
        if (i % 2 == 0) {
            client.reset();
        }
    }
    waitUntil([&server] { return server.counters().openConnections == 0; });
    EXPECT_EQ(ask(server, get("/")).body.size(), 40'000'000U);
}

TEST(HttpServer, AClientThatLeavesInTheMiddleOfARequestIsForgotten)
{
    const HttpServer server = serve();
    const std::string whole = post("/", "body");
    for (const std::string& part :
         {std::string("GET / HT"), whole.substr(0, whole.size() - 1), std::string()}) {
        RawClient(server.port()).send(part);
        RawClient client(server.port());
        client.send(part);
        client.reset();
    }
    // Connections are accepted in order: once this one is answered, the others have been seen.
    EXPECT_EQ(ask(server, get("/")).status, 200U);
    waitUntil([&server] { return server.counters().openConnections == 0; });
    EXPECT_EQ(server.counters().requests, 1U);
}

TEST(HttpServer, ARequestCutShortIsToldSo)
{
    const HttpServer server = serve();
    for (const std::string& part :
         {std::string("GET / HTTP/1.1\r\n"),
          std::string("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 5\r\n\r\n1234"),
          postChunked("/", "5\r\n1234"), postChunked("/", "4\r\n1234\r\n0\r\n")}) {
        RawClient client(server.port());
        client.send(part);
        client.shutdownSend();
        EXPECT_EQ(client.readAnswer().status, 400U) << part;
        EXPECT_TRUE(client.isEnded());
    }
    EXPECT_EQ(server.counters().requests, 0U);
}

TEST(HttpServer, ASlowHandlerDelaysNobodyElse)
{
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    HttpLimits limits;
    limits.readerThreads = 2;
    const HttpServer server = serve(limits, [released](HttpRequest&& request) {
        if (request.target == "/slow") {
            released.wait();
        }
        return echo(std::move(request));
    });
    RawClient slow(server.port());
    slow.send(get("/slow"));
    waitUntil([&server] { return server.counters().requestsInProgress == 1; });
    EXPECT_EQ(ask(server, get("/fast")).body, echoed("GET", "/fast"));

    RawClient second(server.port());
    second.send(get("/slow"));
    waitUntil([&server] { return server.counters().requestsInProgress == 2; });
    // No worker is left, and what needs none is still answered.
    EXPECT_EQ(ask(server, get("/%")).status, 400U);

    release.set_value();
    EXPECT_EQ(slow.readAnswer().body, echoed("GET", "/slow"));
    EXPECT_EQ(second.readAnswer().body, echoed("GET", "/slow"));
}

TEST(HttpServer, ReadsDoNotWaitForWrites)
{
    EXPECT_EQ(statusBeside(post("/slow", "body"), get("/fast")), 200U);
    EXPECT_EQ(
        statusBeside("DELETE /slow HTTP/1.1\r\nHost: h\r\n\r\n", "HEAD /fast HTTP/1.1\r\nHost: h\r\n\r\n"),
        200U);
}

TEST(HttpServer, WritesDoNotWaitForReads)
{
    EXPECT_EQ(statusBeside(get("/slow"), post("/fast", "body")), 200U);
}

TEST(HttpServer, AnswersManyClientsAtOnce)
{
    const HttpServer server = serve();
    std::vector<std::future<int>> clients;
    clients.reserve(16);
    for (int client = 0; client < 16; ++client) {
        clients.push_back(std::async(std::launch::async, [&server, client] {
            RawClient connection(server.port());
            int right = 0;
            for (int i = 0; i < 200; ++i) {
                const std::string target = "/" + std::to_string(client) + "/" + std::to_string(i);
                connection.send(post(target, target));
                right += connection.readAnswer().body == echoed("POST", target, target) ? 1 : 0;
            }
            return right;
        }));
    }
    for (std::future<int>& client : clients) {
        EXPECT_EQ(client.get(), 200);
    }
    EXPECT_EQ(server.counters().answers[2], 3200U);
    EXPECT_EQ(server.counters().requestsInProgress, 0U);
    EXPECT_EQ(server.counters().bodyBytes, 0U);
}

TEST(HttpServer, FiveHundredIdleConnectionsDelayNoRequest)
{
    const HttpServer server = serve();
    std::vector<RawClient> idle;
    for (int i = 0; i < 500; ++i) {
        idle.emplace_back(server.port());
        if (i % 2 == 0) {
            idle.back().send(get("/first"));
            idle.back().readAnswer();
        }
    }
    EXPECT_EQ(ask(server, get("/a")).body, echoed("GET", "/a"));
    waitUntil([&server] { return server.counters().openConnections == 500; });
    for (RawClient& client : idle) {
        client.send(get("/late"));
        EXPECT_EQ(client.readAnswer().body, echoed("GET", "/late"));
    }
}

TEST(HttpServer, ListensOnIPv6)
{
    // A machine without IPv6 says so in the error, which is all that can be asserted there.
    try {
        const HttpServer server(ListenAddress{"::1", 0}, HttpLimits(), echo);
        EXPECT_NE(server.port(), 0);
    } catch (const std::runtime_error& failure) {
        EXPECT_THAT(failure.what(), StartsWith("cannot listen on [::1]:0: "));
    }
}

TEST(HttpServer, SaysWhyItCannotListen)
{
    const HttpServer server = serve();
    try {
        const HttpServer second(ListenAddress{"127.0.0.1", server.port()}, HttpLimits(), echo);
        ADD_FAILURE() << "two servers on one port";
    } catch (const std::runtime_error& failure) {
        EXPECT_EQ(failure.what(),
                  "cannot listen on 127.0.0.1:" + std::to_string(server.port()) + ": Address already in use");
    }
    EXPECT_THROW(HttpServer(ListenAddress{"nonsense", 0}, HttpLimits(), echo), std::runtime_error);
}

TEST(HttpServer, APortIsFreeAgainAtOnce)
{
    std::uint16_t port = 0;
    {
        const HttpServer server = serve();
        port = server.port();
        ask(server, get("/", "Connection: close\r\n"));
    }
    const HttpServer again(ListenAddress{"127.0.0.1", port}, HttpLimits(), echo);
    EXPECT_EQ(ask(again, get("/a")).body, echoed("GET", "/a"));
}

TEST(HttpServer, CountsIntoWhatItIsGiven)
{
    const auto counters = std::make_shared<HttpCounters>();
    {
        const HttpServer server(ListenAddress{}, HttpLimits(), echo, counters);
        ask(server, get("/"));
        ask(server, get("/%"));
    }
    EXPECT_EQ(counters->connections, 2U);
    EXPECT_EQ(counters->openConnections, 0U);
    EXPECT_EQ(counters->requests, 1U);
    EXPECT_EQ(counters->answers[2], 1U);
    EXPECT_EQ(counters->answers[4], 1U);
}

} // namespace monitorservice
