#include "http/RequestHead.h"

#include "http/RefusedRequest.h"

#include <gtest/gtest.h>

namespace monitorservice {

namespace {

RequestHead parsed(const std::string& text)
{
    return parseRequestHead(text, HttpLimits());
}

// A request for "/" with these fields, each with its line end.
std::string withFields(const std::string& fields)
{
    return "GET / HTTP/1.1\r\nHost: h\r\n" + fields + "\r\n";
}

// The status the header is refused with; 0 when it is accepted.
unsigned refusal(const std::string& text)
{
    try {
        parsed(text);
        return 0;
    } catch (const RefusedRequest& refused) {
        return refused.status();
    }
}

std::optional<std::size_t> headEnd(std::string_view text)
{
    std::size_t examined = 0;
    return findHeadEnd(text, examined);
}

} // namespace

TEST(RequestHead, ReadsWhatTheServiceListensTo)
{
    const RequestHead head =
        parsed("PUT /a?b=c HTTP/1.1\r\nhOsT: localhost:8080\r\nAuthorization:Bearer t \t\r\n"
               "Content-Type: application/json\r\nContent-Length: 17\r\nX-Other: \xC3\xA9\r\n\r\n");
    EXPECT_EQ(head.method, "PUT");
    EXPECT_EQ(head.target, "/a?b=c");
    EXPECT_EQ(head.authorization, "Bearer t");
    EXPECT_EQ(head.contentType, "application/json");
    EXPECT_EQ(head.contentLength, 17U);
    EXPECT_FALSE(head.isChunked);
    EXPECT_TRUE(head.isKeptAlive);
    EXPECT_FALSE(head.expectsContinue);
}

TEST(RequestHead, TellsAnAbsentFieldFromAnEmptyOne)
{
    EXPECT_EQ(parsed(withFields("")).authorization, std::nullopt);
    EXPECT_EQ(parsed(withFields("Authorization:\r\n")).authorization, "");
}

TEST(RequestHead, ConnectionIsKeptUnlessClosed)
{
    EXPECT_TRUE(parsed(withFields("")).isKeptAlive);
    EXPECT_TRUE(parsed(withFields("Connection: keep-alive\r\n")).isKeptAlive);
    EXPECT_TRUE(parsed(withFields("Connection: closed\r\n")).isKeptAlive);
    EXPECT_FALSE(parsed(withFields("Connection: Close\r\n")).isKeptAlive);
    EXPECT_FALSE(parsed(withFields("Connection: keep-alive ,\tclose\r\n")).isKeptAlive);
    EXPECT_FALSE(parsed(withFields("Connection: close\r\nConnection: keep-alive\r\n")).isKeptAlive);
    EXPECT_FALSE(parsed("GET / HTTP/1.0\r\n\r\n").isKeptAlive);
    EXPECT_FALSE(parsed("GET / HTTP/1.0\r\nConnection: keep-alive\r\n\r\n").isKeptAlive);
}

TEST(RequestHead, RefusesMalformedRequestLines)
{
    for (const char* line :
         {"", "GET", "GET /", "GET  HTTP/1.1x", " GET / HTTP/1.1", "G(T / HTTP/1.1", "GET / http/1.1",
          "GET\t/\tHTTP/1.1", "GET / HTTQ/1.1", "GET / HTTP/1.10", "GET / HTTP/1", "GET / HTTP/",
          "GET / HTTP/1,1", "GET / ", "G\x80T / HTTP/1.1"}) {
        EXPECT_EQ(refusal(std::string(line) + "\r\nHost: h\r\n\r\n"), 400U) << line;
    }
}

TEST(RequestHead, RefusesOtherVersions)
{
    for (const char* version : {"HTTP/2.0", "HTTP/0.9", "HTTP/1.2", "HTTP/3.0"}) {
        EXPECT_EQ(refusal("GET / " + std::string(version) + "\r\nHost: h\r\n\r\n"), 505U) << version;
    }
}

TEST(RequestHead, RefusesTraceAndConnectOnly)
{
    EXPECT_EQ(refusal("TRACE / HTTP/1.1\r\nHost: h\r\n\r\n"), 501U);
    EXPECT_EQ(refusal("CONNECT h:1 HTTP/1.1\r\nHost: h\r\n\r\n"), 501U);
    EXPECT_EQ(refusal("PATCH / HTTP/1.1\r\nHost: h\r\n\r\n"), 0U);
    EXPECT_EQ(refusal("trace / HTTP/1.1\r\nHost: h\r\n\r\n"), 0U);
}

TEST(RequestHead, RefusesMalformedFields)
{
    for (const char* field :
         {"NoColon", ": value", "Na me: v", "Name : v", "Name\t: v", "N(me: v", " Folded: v", "\tFolded: v",
          "Name: a\x01z", "Name: a\x7Fz", "Name: a\rb", "N\xC3\xA9: v"}) {
        EXPECT_EQ(refusal(withFields(std::string(field) + "\r\n")), 400U) << field;
    }
    EXPECT_EQ(refusal(withFields(std::string("Name: a\0b\r\n", 11))), 400U);
    EXPECT_EQ(refusal(withFields("Name: a\r\n folded\r\n")), 400U);
    EXPECT_EQ(refusal(withFields("Name: a\nOther: b\r\n")), 400U);
}

TEST(RequestHead, RefusesAHeaderWithoutItsEnd)
{
    EXPECT_EQ(refusal(""), 400U);
    EXPECT_EQ(refusal("GET / HTTP/1.1"), 400U);
    EXPECT_EQ(refusal("GET / HTTP/1.1\r\nHost: h\r\n"), 400U);
}

TEST(RequestHead, RefusesRepeatedFieldsThatMustStandOnce)
{
    for (const char* field :
         {"Host: h", "Content-Length: 1", "Transfer-Encoding: chunked", "Authorization: Bearer t",
          "Content-Type: a/b", "Content-Encoding: identity", "Expect: 100-continue"}) {
        std::string text = "POST / HTTP/1.1\r\n";
        for (int i = 0; i < 2; ++i) {
            text.append(field).append("\r\n");
        }
        EXPECT_EQ(refusal(text.append("\r\n")), 400U) << field;
    }
}

TEST(RequestHead, HostIsRequiredInVersion11)
{
    EXPECT_EQ(refusal("GET / HTTP/1.1\r\n\r\n"), 400U);
    EXPECT_EQ(refusal("GET / HTTP/1.0\r\n\r\n"), 0U);
    EXPECT_EQ(refusal("GET / HTTP/1.0\r\nHost: a\r\nHost: b\r\n\r\n"), 400U);
    for (const char* host : {"", "h", "h:80", "127.0.0.1:1", "[::1]:80", "a-b.c_d"}) {
        EXPECT_EQ(refusal("GET / HTTP/1.1\r\nHost: " + std::string(host) + "\r\n\r\n"), 0U) << host;
    }
    for (const char* host : {"a b", "a/b", "a@b", "a?b", "a#b", "\xC3\xA9", "a\\b", "\"a\""}) {
        EXPECT_EQ(refusal("GET / HTTP/1.1\r\nHost: " + std::string(host) + "\r\n\r\n"), 400U) << host;
    }
}

TEST(RequestHead, ReadsContentLengthStrictly)
{
    EXPECT_EQ(parsed(withFields("Content-Length: 0\r\n")).contentLength, 0U);
    EXPECT_EQ(parsed(withFields("Content-Length: 007\r\n")).contentLength, 7U);
    EXPECT_EQ(parsed(withFields("Content-Length: 67108864\r\n")).contentLength, 67108864U);
    EXPECT_EQ(refusal(withFields("Content-Length: 67108865\r\n")), 413U);
    EXPECT_EQ(refusal(withFields("Content-Length: 18446744073709551616\r\n")), 413U);
    for (const char* length : {"", "-1", "+1", "0x10", "1 1", "1, 1", "1,1", "1.0", "a", "1a", "1e3"}) {
        EXPECT_EQ(refusal(withFields("Content-Length: " + std::string(length) + "\r\n")), 400U) << length;
    }
}

TEST(RequestHead, ReadsTransferEncodingStrictly)
{
    EXPECT_TRUE(parsed(withFields("Transfer-Encoding: chunked\r\n")).isChunked);
    EXPECT_TRUE(parsed(withFields("Transfer-Encoding: CHUNKED\r\n")).isChunked);
    for (const char* encoding : {"", "gzip", "identity", "gzip, chunked", "chunked, gzip", "chunked, chunked",
                                 "xchunked", "chunked;a=b", "chunked,"}) {
        EXPECT_EQ(refusal(withFields("Transfer-Encoding: " + std::string(encoding) + "\r\n")), 501U)
            << encoding;
    }
    EXPECT_EQ(refusal(withFields("Transfer-Encoding: chunked\r\nContent-Length: 1\r\n")), 400U);
    EXPECT_EQ(refusal(withFields("Content-Length: 1\r\nTransfer-Encoding: gzip\r\n")), 400U);
    EXPECT_EQ(refusal(withFields("Transfer-Encoding : chunked\r\n")), 400U);
    EXPECT_EQ(refusal("POST / HTTP/1.0\r\nTransfer-Encoding: chunked\r\n\r\n"), 400U);
}

TEST(RequestHead, KnowsOneExpectationAndNoContentEncoding)
{
    EXPECT_TRUE(parsed(withFields("Expect: 100-Continue\r\n")).expectsContinue);
    EXPECT_FALSE(parsed("GET / HTTP/1.0\r\nExpect: 100-continue\r\n\r\n").expectsContinue);
    EXPECT_EQ(refusal(withFields("Expect: a miracle\r\n")), 417U);
    EXPECT_EQ(refusal(withFields("Content-Encoding: identity\r\n")), 0U);
    EXPECT_EQ(refusal(withFields("Content-Encoding: gzip\r\n")), 415U);
}

TEST(RequestHead, CountsFieldsAndMeasuresTheTarget)
{
    HttpLimits limits;
    limits.mostFields = 3;
    limits.longestTarget = 4;
    const std::string two = "Host: h\r\nA: 1\r\n";
    EXPECT_NO_THROW(parseRequestHead("GET /abc HTTP/1.1\r\n" + two + "\r\n", limits));
    EXPECT_NO_THROW(parseRequestHead("GET /abc HTTP/1.1\r\n" + two + "B: 2\r\n\r\n", limits));
    EXPECT_THROW(parseRequestHead("GET /abc HTTP/1.1\r\n" + two + "B: 2\r\nC: 3\r\n\r\n", limits),
                 RefusedRequest);
    EXPECT_THROW(parseRequestHead("GET /abcd HTTP/1.1\r\n" + two + "\r\n", limits), RefusedRequest);
}

TEST(FindHeadEnd, FindsTheEmptyLineHoweverTheBytesArrive)
{
    const std::string head = withFields("A: b\r\n");
    std::size_t examined = 0;
    for (std::size_t size = 0; size < head.size(); ++size) {
        EXPECT_EQ(findHeadEnd(std::string_view(head).substr(0, size), examined), std::nullopt) << size;
    }
    EXPECT_EQ(findHeadEnd(head, examined), head.size());
    EXPECT_EQ(headEnd(head + "body\r\n\r\n"), head.size());
}

TEST(FindHeadEnd, RefusesABareLineFeedAtOnce)
{
    for (const char* text :
         {"GET / HTTP/1.1\n", "GET / HTTP/1.1\r\nA: b\n", "GET / HTTP/1.1\r\n\n", "A\n\r\n"}) {
        EXPECT_THROW(headEnd(text), RefusedRequest) << text;
    }
}

TEST(FindHeadEnd, RefusesWhatCannotBeAMethod)
{
    for (const char* text : {"\x16\x03\x01", " GET", "\nGET", "{", "\x80", "\"", "("}) {
        EXPECT_THROW(headEnd(text), RefusedRequest) << text;
    }
    EXPECT_EQ(headEnd("G"), std::nullopt);
}

} // namespace monitorservice
