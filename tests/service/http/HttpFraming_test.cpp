#include "ServerFixture.h"

#include <gmock/gmock.h>

namespace monitorservice {

using namespace test;
using testing::MatchesRegex;

namespace {

struct Refused
{
    const char* name;
    std::string bytes;
    unsigned status;
};

std::ostream& operator<<(std::ostream& out, const Refused& refused)
{
    return out << refused.name;
}

std::string postWith(const std::string& fields, const std::string& rest)
{
    return "POST /a HTTP/1.1\r\nHost: h\r\n" + fields + "\r\n" + rest;
}

std::string nameOf(const testing::TestParamInfo<Refused>& info)
{
    return info.param.name;
}

const std::string hidden = "GET /hidden HTTP/1.1\r\nHost: h\r\n\r\n";

} // namespace

// Requests that two implementations might cut at different places.
class HttpFraming : public testing::TestWithParam<Refused>
{
};

TEST_P(HttpFraming, IsRefusedAndNothingBehindItIsRead)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    client.send(GetParam().bytes + hidden);
    const RawAnswer answer = client.readAnswer();
    EXPECT_EQ(answer.status, GetParam().status) << answer.body;
    EXPECT_EQ(answer.fields.at("connection"), "close");
    EXPECT_EQ(answer.fields.at("content-type"), "application/json; charset=utf-8");
    EXPECT_THAT(answer.body, MatchesRegex("\\{\"message\":\"[^\"]+\",\"status\":" +
                                          std::to_string(GetParam().status) + "\\}"));
    EXPECT_TRUE(client.isEnded());
    EXPECT_EQ(server.counters().requests, 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Heads, HttpFraming,
    testing::Values(
        Refused{"LengthAndChunked",
                postWith("Content-Length: 4\r\nTransfer-Encoding: chunked\r\n", "0\r\n\r\n"), 400},
        Refused{"ChunkedAndLength",
                postWith("Transfer-Encoding: chunked\r\nContent-Length: 4\r\n", "0\r\n\r\n"), 400},
        Refused{"DoubledLength", postWith("Content-Length: 4\r\nContent-Length: 4\r\n", "body"), 400},
        Refused{"DifferentLengths", postWith("Content-Length: 4\r\nContent-Length: 0\r\n", "body"), 400},
        Refused{"ListOfLengths", postWith("Content-Length: 4, 4\r\n", "body"), 400},
        Refused{"NegativeLength", postWith("Content-Length: -1\r\n", ""), 400},
        Refused{"SignedLength", postWith("Content-Length: +4\r\n", "body"), 400},
        Refused{"FoldedLength", postWith("Content-Length:\r\n 4\r\n", "body"), 400},
        Refused{"BlankBeforeColon", postWith("Content-Length : 4\r\n", "body"), 400},
        Refused{"DoubledTransferEncoding",
                postWith("Transfer-Encoding: chunked\r\nTransfer-Encoding: identity\r\n", "0\r\n\r\n"), 400},
        Refused{"UnknownTransferEncoding", postWith("Transfer-Encoding: gzip, chunked\r\n", "0\r\n\r\n"),
                501},
        Refused{"HiddenTransferEncoding",
                postWith("Transfer-Encoding: \x0b"
                         "chunked\r\n",
                         "0\r\n\r\n"),
                400},
        Refused{"ChunkedInVersion10", "POST /a HTTP/1.0\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 400},
        Refused{"FirstFieldFolded", "GET /a HTTP/1.1\r\n Host: h\r\nHost: h\r\n\r\n", 400},
        Refused{"FoldedTransferEncoding",
                postWith("Transfer-Encoding:\r\n chunked\r\nContent-Length: 4\r\n", "body"), 400},
        Refused{"TabBeforeColon", postWith("Content-Length\t: 4\r\n", "body"), 400},
        Refused{"BlankBeforeColonOfTransferEncoding",
                postWith("Transfer-Encoding : chunked\r\n", "0\r\n\r\n"), 400},
        Refused{"NoName", postWith(": 4\r\n", ""), 400},
        Refused{"LengthInAnotherCase", postWith("content-length: 4\r\nCONTENT-LENGTH: 5\r\n", "body"), 400},
        Refused{"HexadecimalLength", postWith("Content-Length: 0x4\r\n", "body"), 400},
        Refused{"LengthWithABlank", postWith("Content-Length: 4 4\r\n", "body"), 400},
        Refused{"EmptyLength", postWith("Content-Length:\r\n", "body"), 400},
        Refused{"LengthBeyondAnyInteger", postWith("Content-Length: 18446744073709551620\r\n", "body"), 413},
        Refused{"LengthAndUnknownEncoding", postWith("Content-Length: 4\r\nTransfer-Encoding: x\r\n", "body"),
                400},
        Refused{"EmptyTransferEncoding", postWith("Transfer-Encoding:\r\n", "0\r\n\r\n"), 501},
        Refused{"ChunkedTwice", postWith("Transfer-Encoding: chunked, chunked\r\n", "0\r\n\r\n"), 501},
        Refused{"ChunkedIdentity", postWith("Transfer-Encoding: chunked, identity\r\n", "0\r\n\r\n"), 501},
        Refused{"QuotedChunked", postWith("Transfer-Encoding: \"chunked\"\r\n", "0\r\n\r\n"), 501},
        Refused{"BareCarriageReturnAsLineEnd", "GET /a HTTP/1.1\rHost: h\r\rGET /b HTTP/1.1\r\n\r\n", 400},
        Refused{"BareLineFeedBeforeTheBody", "POST /a HTTP/1.1\r\nHost: h\r\nContent-Length: 4\r\n\nbody",
                400},
        Refused{"BareCarriageReturnInTarget", "GET /a\r HTTP/1.1\r\nHost: h\r\n\r\n", 400},
        Refused{"EmptyLineFeed", "\nGET /a HTTP/1.1\r\nHost: h\r\n\r\n", 400},
        Refused{"AbsoluteFormOfAnotherHost", get("https://other/monitor-service/cells"), 400},
        Refused{"AuthorityForm", get("h:80"), 400},
        Refused{"ConnectOfAnAuthority", "CONNECT other:443 HTTP/1.1\r\nHost: other\r\n\r\n", 501},
        Refused{"TwoEqualHosts", "GET /a HTTP/1.1\r\nHost: h\r\nHost: h\r\n\r\n", 400},
        Refused{"HostWithAPath", "GET /a HTTP/1.1\r\nHost: h/b\r\n\r\n", 400},
        Refused{"Version12", "GET /a HTTP/1.2\r\nHost: h\r\n\r\n", 505},
        Refused{"LowerCaseVersion", "GET /a http/1.1\r\nHost: h\r\n\r\n", 400},
        Refused{"TabsInTheRequestLine", "GET\t/a\tHTTP/1.1\r\nHost: h\r\n\r\n", 400},
        Refused{"TwoBlanksInTheRequestLine", "GET  /a HTTP/1.1\r\nHost: h\r\n\r\n", 400},
        Refused{"TwoExpectations", get("/a", "Expect: 100-continue\r\nExpect: 100-continue\r\n"), 400},
        Refused{"FoldedField", postWith("X-A: b\r\n\tc\r\n", ""), 400},
        Refused{"BareLineFeeds", "GET /a HTTP/1.1\nHost: h\n\n", 400},
        Refused{"OneBareLineFeed", "GET /a HTTP/1.1\r\nHost: h\nX-A: b\r\n\r\n", 400},
        Refused{"BareCarriageReturn", "GET /a HTTP/1.1\r\nHost: h\r\nX-A: b\rc\r\n\r\n", 400},
        Refused{"NulInAField", get("/a", std::string("X: a\0b\r\n", 8)), 400},
        Refused{"NoHost", "GET /a HTTP/1.1\r\n\r\n", 400},
        Refused{"TwoHosts", "GET /a HTTP/1.1\r\nHost: a\r\nHost: b\r\n\r\n", 400},
        Refused{"TwoAuthorizations", get("/a", "Authorization: Bearer a\r\nauthorization: Bearer a\r\n"),
                400},
        Refused{"AbsoluteForm", get("http://h/a"), 400},
        Refused{"Asterisk", "OPTIONS * HTTP/1.1\r\nHost: h\r\n\r\n", 400},
        Refused{"Fragment", get("/a#b"), 400}, Refused{"BadPercent", get("/%zz"), 400},
        Refused{"Nul", get("/%00"), 400}, Refused{"NotUtf8", get("/%C0%AF"), 400},
        Refused{"BlankInTarget", get("/a b"), 400},
        Refused{"Trace", "TRACE /a HTTP/1.1\r\nHost: h\r\n\r\n", 501},
        Refused{"Connect", "CONNECT h:80 HTTP/1.1\r\nHost: h\r\n\r\n", 501},
        Refused{"Version2", "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", 505},
        Refused{"Version09", "GET /a\r\n\r\n", 400}, Refused{"TlsHello", "\x16\x03\x01\x02", 400},
        Refused{"UnknownExpectation", get("/a", "Expect: more\r\n"), 417},
        Refused{"CompressedBody", postWith("Content-Encoding: gzip\r\nContent-Length: 4\r\n", "body"), 415}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Chunks, HttpFraming,
    testing::Values(
        Refused{"NoSize", postChunked("/a", "\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"SizeIsNoNumber", postChunked("/a", "x\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"PrefixedSize", postChunked("/a", "0x4\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"NegativeSize", postChunked("/a", "-4\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"SignedSize", postChunked("/a", "+4\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"BlankBeforeSize", postChunked("/a", " 4\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"SizeBeyondAnyInteger", postChunked("/a", "10000000000000004\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"HugeSize", postChunked("/a", "7fffffffffffffff\r\nbody\r\n0\r\n\r\n"), 413},
        Refused{"BareLineFeedAfterSize", postChunked("/a", "4\nbody\r\n0\r\n\r\n"), 400},
        Refused{"BareLineFeedAfterExtension", postChunked("/a", "4;a\nb\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"LineFeedInQuotes", postChunked("/a", "4;a=\"b\nc\"\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"EscapedLineFeedInQuotes", postChunked("/a", "4;a=\"\\\n\"\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"CarriageReturnInQuotes", postChunked("/a", "4;a=\"b\rc\"\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"LineEndInQuotes", postChunked("/a", "4;a=\"b\r\nc\"\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"ControlCharacterInQuotes", postChunked("/a", "4;a=\"\x7f\"\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"LineFeedInQuotesOfTheLastChunk", postChunked("/a", "4\r\nbody\r\n0;a=\"\n\"\r\n\r\n"), 400},
        Refused{"ChunkLongerThanItsSize", postChunked("/a", "3\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"NoLineEndAfterChunk", postChunked("/a", "4\r\nbody0\r\n\r\n"), 400},
        Refused{"BareLineFeedAfterChunk", postChunked("/a", "4\r\nbody\n0\r\n\r\n"), 400},
        Refused{"ExtensionIsNoToken", postChunked("/a", "4;(=b\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"ExtensionWithoutSemicolon", postChunked("/a", "4 a=b\r\nbody\r\n0\r\n\r\n"), 400},
        Refused{"EndlessExtension", postChunked("/a", "4;a=" + std::string(200'000, 'x')), 400},
        Refused{"TrailerWithoutColon", postChunked("/a", "0\r\nTrailer\r\n\r\n"), 400},
        Refused{"TrailerWithBareLineFeed", postChunked("/a", "0\r\nA: b\nC: d\r\n\r\n"), 400},
        Refused{"EndlessTrailer", postChunked("/a", "0\r\nA: " + std::string(200'000, 'x')), 400}),
    nameOf);

TEST(HttpUpgrade, IsNotListenedTo)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    client.send(
        get("/a", "Connection: Upgrade, HTTP2-Settings\r\nUpgrade: h2c\r\nHTTP2-Settings: AAMAAABk\r\n") +
        get("/b", "Connection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Key: eA==\r\n") + get("/c"));
    for (const char* const target : {"/a", "/b", "/c"}) {
        const RawAnswer answer = client.readAnswer();
        EXPECT_EQ(answer.status, 200U);
        EXPECT_EQ(answer.body, echoed("GET", target));
        EXPECT_EQ(answer.fields.count("upgrade"), 0U);
    }
}

TEST(HttpVersion10, IsClosedWhateverItAsksFor)
{
    const HttpServer server = serve();
    for (const std::string fields :
         {"", "Connection: keep-alive\r\n", "Keep-Alive: 100\r\nConnection: Keep-Alive\r\n"}) {
        RawClient client(server.port());
        client.send("POST /a HTTP/1.0\r\nContent-Length: 4\r\n" + fields + "\r\nbody" + hidden);
        EXPECT_EQ(client.readAnswer().body, echoed("POST", "/a", "body"));
        EXPECT_TRUE(client.isEnded());
    }
    EXPECT_EQ(server.counters().requests, 3U);
}

TEST(HttpChunks, AreJoined)
{
    const HttpServer server = serve();
    EXPECT_EQ(ask(server, postChunked("/a", "0\r\n\r\n")).body, echoed("POST", "/a"));
    EXPECT_EQ(ask(server, postChunked("/a", "00000004\r\nbody\r\n000\r\n\r\n")).body,
              echoed("POST", "/a", "body"));
    EXPECT_EQ(ask(server,
                  postChunked("/a", "A;x=\"y\tz \\\" é\";q\r\n0123456789\r\na\r\nabcdefghij\r\n0;e\r\n\r\n"))
                  .body,
              echoed("POST", "/a", "0123456789abcdefghij"));
}

TEST(HttpChunks, TrailerFieldsAreNotHeaderFields)
{
    const HttpServer server = serve();
    RawClient client(server.port());
    client.send(postChunked("/a", "4\r\nbody\r\n0\r\nAuthorization: Bearer t\r\nHost: other\r\n\r\n") +
                get("/b"));
    EXPECT_EQ(client.readAnswer().body, echoed("POST", "/a", "body"));
    EXPECT_EQ(client.readAnswer().body, echoed("GET", "/b"));
}

} // namespace monitorservice
