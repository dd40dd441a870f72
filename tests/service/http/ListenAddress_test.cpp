#include "http/ListenAddress.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace monitorservice {

TEST(ListenAddress, ReadsIPv4AndIPv6)
{
    const ListenAddress four = parseListenAddress("127.0.0.1:8080");
    EXPECT_EQ(four.host, "127.0.0.1");
    EXPECT_EQ(four.port, 8080);
    const ListenAddress six = parseListenAddress("[::1]:65535");
    EXPECT_EQ(six.host, "::1");
    EXPECT_EQ(six.port, 65535);
    EXPECT_EQ(parseListenAddress("0.0.0.0:0").port, 0);
}

TEST(ListenAddress, WritesWhatItReads)
{
    for (const char* text : {"127.0.0.1:8080", "[::1]:1", "[::]:0", "[fe80::1]:443"}) {
        EXPECT_EQ(toText(parseListenAddress(text)), text);
    }
}

TEST(ListenAddress, RefusesAnythingElseAndQuotesIt)
{
    for (const char* text : {"",
                             "8080",
                             ":8080",
                             "127.0.0.1",
                             "127.0.0.1:",
                             "127.0.0.1:65536",
                             "127.0.0.1:-1",
                             "127.0.0.1:+1",
                             "127.0.0.1: 1",
                             "127.0.0.1:80x",
                             "localhost:80",
                             "127.0.0:80",
                             "256.0.0.1:80",
                             "[127.0.0.1]:80",
                             "::1:80",
                             "[::1]",
                             "[::1:80",
                             "::1]:80",
                             "[]:80",
                             "[::g]:80",
                             "127.0.0.1:8080 "}) {
        try {
            parseListenAddress(text);
            ADD_FAILURE() << text;
        } catch (const std::invalid_argument& refusal) {
            EXPECT_NE(std::string(refusal.what()).find("\"" + std::string(text) + "\""), std::string::npos)
                << refusal.what();
        }
    }
}

} // namespace monitorservice
