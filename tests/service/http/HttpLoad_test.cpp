#include "ServerFixture.h"
#include "http/DescriptorLimit.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <vector>

namespace monitorservice {

using namespace test;

namespace {

using Clock = std::chrono::steady_clock;

bool isLongRun()
{
    const char* const value = std::getenv("RK_TEST_LONG");
    return value != nullptr && std::string_view(value) == "1";
}

// Connections that send a byte of a request now and then, and never its end.
class SlowClients
{
public:
    SlowClients(std::uint16_t port, std::size_t number) : m_port(port)
    {
        m_clients.reserve(number);
        for (std::size_t i = 0; i < number; ++i) {
            m_clients.push_back(std::make_unique<RawClient>(port));
            begin(i);
        }
    }

    // One byte more of each; whom the server has answered and closed begins anew.
    void trickle()
    {
        for (std::size_t i = 0; i < m_clients.size(); ++i) {
            if (!m_clients[i]->send("x")) {
                m_clients[i] = std::make_unique<RawClient>(m_port);
                begin(i);
                ++renewed;
            }
        }
    }

    std::size_t renewed = 0;

private:
    // Half of them do not come to the end of a header, half not to that of a body.
    void begin(std::size_t index)
    {
        m_clients[index]->send(index % 2 == 0
                                   ? "GET /slow HTTP/1.1\r\nHost: h\r\nX-Slow: "
                                   : "POST /slow HTTP/1.1\r\nHost: h\r\nContent-Length: 1000000\r\n\r\n");
    }

    std::uint16_t m_port;
    std::vector<std::unique_ptr<RawClient>> m_clients;
};

} // namespace

// Whether it is quick enough depends on the machine, so the times are printed; that every request is answered
// does not.
TEST(HttpLoad, FiveHundredSlowAndAThousandIdleConnectionsDelayNobody)
{
    constexpr std::size_t slow = 500;
    constexpr std::size_t idle = 1000;
    // Both ends of each connection are in this process.
    ASSERT_GE(allowDescriptors(2 * (slow + idle) + 200), 2 * (slow + idle) + 200);
    HttpLimits limits;
    if (!isLongRun()) {
        // However slow the machine is, no connection is ended while requests are counted.
        limits.idleDeadline = limits.headerDeadline = limits.progressDeadline = std::chrono::minutes(10);
    }
    const HttpServer server = serve(limits);
    std::vector<RawClient> idleClients;
    idleClients.reserve(idle);
    for (std::size_t i = 0; i < idle; ++i) {
        idleClients.emplace_back(server.port());
    }
    SlowClients slowClients(server.port(), slow);
    waitUntil([&server] { return server.counters().openConnections == slow + idle; });

    std::atomic<bool> isOver{false};
    std::thread trickling([&] {
        while (!isOver) {
            slowClients.trickle();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    });
    std::vector<double> milliseconds;
    std::uint64_t fewest = slow + idle;
    const auto end = Clock::now() + std::chrono::seconds(isLongRun() ? 50 : 3);
    RawClient kept(server.port());
    while (Clock::now() < end || milliseconds.size() < 200) {
        const auto begin = Clock::now();
        if (milliseconds.size() % 2 == 0) {
            EXPECT_EQ(ask(server, get("/now")).status, 200U);
        } else {
            kept.send(post("/now", "body"));
            EXPECT_EQ(kept.readAnswer().status, 200U);
        }
        milliseconds.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        fewest = std::min<std::uint64_t>(fewest, server.counters().openConnections);
    }
    isOver = true;
    trickling.join();

    // In a long run the server's deadlines end slow connections, and others take their place.
    EXPECT_GE(fewest, isLongRun() ? idle : slow + idle);
    std::sort(milliseconds.begin(), milliseconds.end());
    std::cout << "http: " << milliseconds.size() << " requests among " << slow << " slow and " << idle
              << " idle connections, median " << milliseconds[milliseconds.size() / 2] << " ms, worst "
              << milliseconds.back() << " ms, failures: " << (testing::Test::HasFailure() ? "some" : "0")
              << std::endl;
}

// However the bytes are cut into packets, each request is answered, in order.
TEST(HttpPipelining, AnswersInOrderHoweverTheBytesArrive)
{
    const HttpServer server = serve({}, [](HttpRequest&& request) {
        if (request.target.find("slow") != std::string::npos) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        if (request.target.find("fails") != std::string::npos) {
            return errorResponse(404, "there is no " + request.target);
        }
        return echo(std::move(request));
    });
    std::mt19937 random(20151221);
    std::size_t answered = 0;
    for (int round = 0; round < (isLongRun() ? 200 : 10); ++round) {
        RawClient client(server.port());
        std::string bytes;
        std::vector<std::string> expected;
        for (int i = 0; i < 60; ++i) {
            const std::string number = std::to_string(i);
            const std::string body(random() % 300, static_cast<char>('a' + i % 26));
            switch (random() % 5) {
            case 0:
                bytes += get("/" + number);
                expected.push_back(echoed("GET", "/" + number));
                break;
            case 1:
                bytes += get("/slow" + number);
                expected.push_back(echoed("GET", "/slow" + number));
                break;
            case 2:
                bytes += get("/fails" + number);
                expected.push_back(errorResponse(404, "there is no /fails" + number).body);
                break;
            case 3:
                bytes += post("/" + number, body);
                expected.push_back(echoed("POST", "/" + number, body));
                break;
            default:
                bytes +=
                    postChunked("/" + number, "3;x=\"0\"\r\nabc\r\n0\r\nTrailer: GET / HTTP/1.1\r\n\r\n");
                expected.push_back(echoed("POST", "/" + number, "abc"));
            }
        }
        std::thread sending([&] {
            std::string_view rest = bytes;
            while (!rest.empty()) {
                const std::size_t size = std::min<std::size_t>(rest.size(), 1 + random() % 700);
                client.send(rest.substr(0, size));
                rest.remove_prefix(size);
            }
        });
        for (const std::string& body : expected) {
            EXPECT_EQ(client.readAnswer().body, body);
            ++answered;
        }
        sending.join();
    }
    EXPECT_EQ(server.counters().requests, answered);
    std::cout << "http: " << answered << " pipelined requests answered in order" << std::endl;
}

} // namespace monitorservice
