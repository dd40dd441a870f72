#include "Fault.h"

#include "../../support/Deflate.h"

#include <utility>

const QByteArray serviceMessage = R"({"message":"refused by the service","status":0})";

namespace {

using Arrival = ScriptServer::Arrival;
using Readable = Fault::Readable;
using Step = ScriptServer::Step;
using Steps = QList<Step>;
using Code = QNetworkReply::NetworkError;

constexpr int shortDeadline = 150;
constexpr Code answers = QNetworkReply::NoError;
constexpr Code closed = QNetworkReply::RemoteHostClosedError;
constexpr Code late = QNetworkReply::TimeoutError;
constexpr Code nonsense = QNetworkReply::ProtocolFailure;

const QByteArray json = QByteArrayLiteral("Content-Type: application/json\r\n");
const QByteArray html = QByteArrayLiteral("<!DOCTYPE html><html><body>It works!</body></html>");

QByteArray lengthLine(qint64 length)
{
    return "Content-Length: " + QByteArray::number(length) + "\r\n";
}

QByteArray withHead(const QByteArray& statusAndLines, const QByteArray& body)
{
    return "HTTP/1.1 " + statusAndLines + "\r\n" + body;
}

// A reply of status 200 with these lines in its header.
QByteArray good(const QByteArray& lines, const QByteArray& body)
{
    return withHead("200 OK\r\n" + lines, body);
}

QByteArray whole(const QByteArray& answer)
{
    return good(json + lengthLine(answer.size()), answer);
}

Fault fault(std::string name, Code error, Fault::Steps steps)
{
    Fault made;
    made.name = std::move(name);
    made.error = error;
    made.steps = std::move(steps);
    return made;
}

// The server does not get to see a request.
Fault unseen(std::string name, Code error, Arrival arrival)
{
    return fault(std::move(name), error, {}).arriving(arrival);
}

// Answers with what `make` makes of the good answer, and leaves the connection open.
template <typename Make>
Fault sends(std::string name, Code error, Make make)
{
    return fault(std::move(name), error,
                 [make](const QByteArray& answer) { return Steps{Step::bytes(make(answer))}; });
}

// The same, and closes the connection.
template <typename Make>
Fault sendsAndCloses(std::string name, Code error, Make make)
{
    return fault(std::move(name), error, [make](const QByteArray& answer) {
        return Steps{Step::bytes(make(answer)), Step::fin()};
    });
}

template <typename Make>
Fault sendsAndResets(std::string name, Code error, Make make)
{
    return fault(std::move(name), error, [make](const QByteArray& answer) {
        return Steps{Step::bytes(make(answer)), Step::pause(10), Step::reset()};
    });
}

// The same, and says no more.
template <typename Make>
Fault sendsAndWaits(std::string name, Make make)
{
    return fault(std::move(name), late,
                 [make](const QByteArray& answer) {
                     return Steps{Step::bytes(make(answer)), Step::never()};
                 })
        .endedByDeadline(shortDeadline);
}

// A status 200 whose body is not the service's, with its right length.
Fault hasBody(std::string name, const QByteArray& body)
{
    return sends(std::move(name), nonsense, [body](const QByteArray&) { return whole(body); });
}

// `begin` and the good answer, in bytes that come one every half second.
Fault trickle(std::string name, const QByteArray& begin)
{
    return fault(std::move(name), late,
                 [begin](const QByteArray& answer) {
                     Steps steps = {Step::bytes(begin)};
                     const QByteArray rest = begin.isEmpty() ? whole(answer) : answer;
                     for (const char byte : rest) {
                         steps << Step::bytes(QByteArray(1, byte)) << Step::pause(500);
                     }
                     return steps;
                 })
        .endedByDeadline(700);
}

std::vector<Fault> connectionFaults()
{
    const auto nothing = [](const QByteArray&) {
        return QByteArray();
    };
    return {
        unseen("Refused", QNetworkReply::ConnectionRefusedError, Arrival::Refused),
        // The reset may be there before the client knows that it is connected.
        unseen("ResetWhenAccepted", closed, Arrival::Reset).orFailing(QNetworkReply::ConnectionRefusedError),
        unseen("ResetAtFirstByteOfTheRequest", closed, Arrival::ResetAtFirstByte),
        sendsAndCloses("ClosedBeforeTheHeader", closed, nothing).silent(),
        fault("ResetBeforeTheHeader", closed, [](const QByteArray&) { return Steps{Step::reset()}; })
            .silent(),
        sendsAndCloses("ClosedDuringTheStatusLine", closed, [](const QByteArray&) { return "HTTP/1.1 20"; })
            .silent(),
        sendsAndCloses("ClosedDuringTheHeader", closed,
                       [](const QByteArray&) { return "HTTP/1.1 200 OK\r\nContent-Le"; }),
        sendsAndResets("ResetDuringTheHeader", closed,
                       [](const QByteArray&) { return "HTTP/1.1 200 OK\r\nContent-Le"; }),
        sendsAndCloses("ClosedAfterTheHeader", closed,
                       [](const QByteArray& answer) { return good(lengthLine(answer.size()), {}); }),
        sendsAndResets("ResetAfterTheHeader", closed,
                       [](const QByteArray& answer) { return good(lengthLine(answer.size()), {}); }),
        sendsAndCloses("ClosedDuringTheBody", closed,
                       [](const QByteArray& answer) { return whole(answer).chopped(1); }),
        sendsAndResets("ResetDuringTheBody", closed,
                       [](const QByteArray& answer) { return whole(answer).chopped(1); }),
        sendsAndCloses("ClosedAfterTheAnswer", answers, whole).reading(Readable::Answer),
    };
}

std::vector<Fault> lengthFaults()
{
    const auto length = [](const QByteArray& text) {
        return [text](const QByteArray& answer) {
            return good("Content-Length: " + text + "\r\n", answer);
        };
    };
    const auto lengthOff = [](int by) {
        return [by](const QByteArray& answer) {
            return good(lengthLine(answer.size() + by), answer);
        };
    };
    return {
        sends("LengthTooSmall", nonsense, lengthOff(-10)),
        sends("LengthOne", nonsense, length("1")),
        sendsAndCloses("LengthTooLarge", closed, lengthOff(10)),
        sends("LengthNegative", nonsense, length("-1")),
        sends("LengthIsNoNumber", nonsense, length("many")),
        sends("LengthWithRubbishBehind", nonsense, length("200 bytes")),
        sendsAndCloses("LengthBeyond64Bits", nonsense, length("99999999999999999999")),
        sends("LengthEmpty", nonsense, length("")),
        sends("DuplicateLengthDiffers", nonsense,
              [](const QByteArray& answer) {
                  return good(lengthLine(answer.size()) + lengthLine(answer.size() + 1), answer);
              }),
        sends("LengthTwoInOneLine", nonsense, length("200, 201")),
        sends("DuplicateLengthAgrees", answers,
              [](const QByteArray& answer) {
                  return good(lengthLine(answer.size()) + lengthLine(answer.size()), answer);
              })
            .reading(Readable::Answer),
        sends("MoreThanItsLength", answers,
              [](const QByteArray& answer) { return whole(answer) + "HTTP/1.1 200 OK\r\n\r\n{}"; })
            .reading(Readable::Answer),
        sendsAndCloses("NoLength", answers, [](const QByteArray& answer) { return good(json, answer); })
            .reading(Readable::Answer),
    };
}

QByteArray chunk(const QByteArray& data)
{
    return QByteArray::number(data.size(), 16) + "\r\n" + data + "\r\n";
}

QByteArray chunked(const QByteArray& chunks)
{
    return good(json + "Transfer-Encoding: chunked\r\n", chunks);
}

std::vector<Fault> chunkFaults()
{
    const auto sizes = [](const QByteArray& size) {
        return [size](const QByteArray& answer) {
            return chunked(size + "\r\n" + answer + "\r\n0\r\n\r\n");
        };
    };
    // libcurl does not tell a bad chunk from a broken connection.
    constexpr Code broken = closed;
    return {
        sends("ChunkSizeIsNoNumber", broken, sizes("zz")),
        sends("ChunkSizeNegative", broken, sizes("-c8")),
        sends("ChunkSizeEmpty", broken, sizes("")),
        sends("ChunkSizeBeyond64Bits", broken, sizes("10000000000000000c8")),
        sends("ChunkSizeTooSmall", broken, sizes("c0")),
        sendsAndCloses("ChunkSizeTooLarge", closed, sizes("fff")),
        sends("ChunkWithoutItsLineEnd", broken,
              [](const QByteArray& answer) { return chunked(chunk(answer).chopped(2) + "0\r\n\r\n"); }),
        sends("NoChunksAtAll", broken, [](const QByteArray& answer) { return chunked(answer); }),
        sendsAndCloses("LastChunkMissing", closed,
                       [](const QByteArray& answer) { return chunked(chunk(answer)); }),
        sendsAndResets("LastChunkMissingAndReset", closed,
                       [](const QByteArray& answer) { return chunked(chunk(answer)); }),
        sendsAndCloses("LastLineEndMissing", closed,
                       [](const QByteArray& answer) { return chunked(chunk(answer) + "0\r\n"); }),
        sends("ChunksEndTooEarly", nonsense,
              [](const QByteArray& answer) { return chunked(chunk(answer.chopped(1)) + "0\r\n\r\n"); }),
        sends("NoChunkButTheLast", answers, [](const QByteArray&) { return chunked("0\r\n\r\n"); })
            .failingReads(nonsense),
        sendsAndCloses("TransferEncodingUnknown", nonsense,
                       [](const QByteArray& answer) { return good("Transfer-Encoding: br\r\n", answer); }),
        sends("ChunksAndALength", answers,
              [](const QByteArray& answer) {
                  return good("Content-Length: 5\r\nTransfer-Encoding: chunked\r\n",
                              chunk(answer) + "0\r\n\r\n");
              })
            .reading(Readable::Answer),
        sends("ChunksWithExtensionsAndTrailer", answers,
              [](const QByteArray& answer) {
                  return chunked(chunk(answer).replace("\r\n", ";a=b\r\n").chopped(6) +
                                 "\r\n0\r\nX-T: 1\r\n\r\n");
              })
            .reading(Readable::Answer),
    };
}

QByteArray compressed(const QByteArray& body, const QByteArray& encoding = "gzip")
{
    return good("Content-Encoding: " + encoding + "\r\n" + lengthLine(body.size()), body);
}

std::vector<Fault> compressionFaults()
{
    static const QByteArray bomb = gzipped('"' + QByteArray(20 * int(largestReply), 'x') + '"');
    return {
        sends("GzipTruncated", nonsense,
              [](const QByteArray& answer) { return compressed(gzipped(answer).chopped(1)); }),
        sends("GzipHalf", nonsense,
              [](const QByteArray& answer) {
                  const QByteArray all = gzipped(answer);
                  return compressed(all.left(all.size() / 2));
              }),
        sends("GzipWithAWrongSum", nonsense,
              [](const QByteArray& answer) {
                  QByteArray all = gzipped(answer);
                  all[all.size() - 6] = static_cast<char>(all.at(all.size() - 6) ^ 1);
                  return compressed(all);
              }),
        sends("GzipCorrupt", nonsense,
              [](const QByteArray& answer) {
                  QByteArray all = gzipped(answer);
                  all[all.size() / 2] = static_cast<char>(all.at(all.size() / 2) ^ 0x55);
                  return compressed(all);
              }),
        sends("GzipWithRubbishBehind", nonsense,
              [](const QByteArray& answer) { return compressed(gzipped(answer) + "rubbish"); }),
        sends("GzipThatIsNone", nonsense, [](const QByteArray& answer) { return compressed(answer); }),
        sends("GzipOfNothing", nonsense, [](const QByteArray&) { return compressed({}); }),
        sends("GzipOfHtml", nonsense, [](const QByteArray&) { return compressed(gzipped(html)); }),
        sends("GzipBomb", nonsense, [](const QByteArray&) { return compressed(bomb); }),
        sends("DeflateThatIsNone", nonsense,
              [](const QByteArray& answer) { return compressed(answer, "deflate"); }),
        sends("EncodingUnknown", nonsense, [](const QByteArray& answer) { return compressed(answer, "br"); }),
        sends("Gzip", answers, [](const QByteArray& answer) { return compressed(gzipped(answer)); })
            .reading(Readable::Answer),
    };
}

std::vector<Fault> interimFaults()
{
    const auto first = [](const QByteArray& head) {
        return [head](const QByteArray& answer) {
            return withHead(head, {}) + whole(answer);
        };
    };
    return {
        sends("ContinueFirst", answers, first("100 Continue\r\n")).reading(Readable::Answer),
        sends("ProcessingFirst", answers, first("102 Processing\r\nA: b\r\n")).reading(Readable::Answer),
        sends("EarlyHintsFirst", answers, first("103 Early Hints\r\nLink: </x>\r\n"))
            .reading(Readable::Answer),
        sendsAndCloses("ContinueOnly", closed,
                       [](const QByteArray&) { return withHead("100 Continue\r\n", {}); }),
        sendsAndCloses("SwitchingProtocols", closed,
                       [](const QByteArray&) { return withHead("101 Go\r\nUpgrade: x\r\n", {}); }),
        sends("ContinueWithoutEnd", nonsense,
              [](const QByteArray&) { return withHead("100 Continue\r\n", {}).repeated(20000); }),
        sends("InterimThenRefusal", QNetworkReply::ContentConflictError,
              [](const QByteArray&) {
                  return withHead("100 Continue\r\n", {}) + ScriptServer::httpAnswer(409, serviceMessage);
              })
            .reading(Readable::Message),
    };
}

// A write may be answered without content; a read that brings nothing has failed.
std::vector<Fault> emptyFaults()
{
    const auto empty = [](const std::string& name, const QByteArray& head) {
        return sends(name, answers, [head](const QByteArray&) { return withHead(head, {}); })
            .failingReads(nonsense);
    };
    return {
        empty("NoContent", "204 No Content\r\n"),
        empty("NoContentOfGzip", "204 No Content\r\nContent-Encoding: gzip\r\n"),
        empty("ResetContent", "205 Reset Content\r\nContent-Length: 0\r\n"),
        empty("LengthZero", "200 OK\r\nContent-Length: 0\r\n"),
        empty("CreatedWithLengthZero", "201 Created\r\nContent-Length: 0\r\n"),
        sends("LengthZeroAndABody", answers,
              [](const QByteArray& answer) { return good("Content-Length: 0\r\n", answer); })
            .failingReads(nonsense),
        // Without a length nothing tells this from an answer that was cut.
        sendsAndCloses("NothingUntilTheEnd", closed, [](const QByteArray&) { return good(json, {}); }),
        sendsAndResets("NothingUntilTheReset", closed, [](const QByteArray&) { return good(json, {}); }),
    };
}

std::string numbered(const char* what, int status)
{
    return what + std::to_string(status);
}

std::vector<Fault> redirects()
{
    std::vector<Fault> faults;
    for (const int status : {300, 301, 302, 303, 304, 305, 306, 307, 308, 399}) {
        // Where it points to answers well, and so does what comes with it: neither is to be believed.
        faults.push_back(sends(numbered("Redirect", status), QNetworkReply::TooManyRedirectsError,
                               [status](const QByteArray& answer) {
                                   return ScriptServer::httpAnswer(status, answer,
                                                                   {"Location: /monitor-service/cells/c5"});
                               }));
    }
    return faults;
}

Code codeOf(int status)
{
    // As Qt's own manager has them.
    switch (status) {
    case 400:
    case 418:
        return QNetworkReply::ProtocolInvalidOperationError;
    case 401:
        return QNetworkReply::AuthenticationRequiredError;
    case 403:
        return QNetworkReply::ContentAccessDenied;
    case 404:
        return QNetworkReply::ContentNotFoundError;
    case 405:
        return QNetworkReply::ContentOperationNotPermittedError;
    case 407:
        return QNetworkReply::ProxyAuthenticationRequiredError;
    case 409:
        return QNetworkReply::ContentConflictError;
    case 410:
        return QNetworkReply::ContentGoneError;
    case 500:
        return QNetworkReply::InternalServerError;
    case 501:
        return QNetworkReply::OperationNotImplementedError;
    case 503:
        return QNetworkReply::ServiceUnavailableError;
    default:
        return status < 500 ? QNetworkReply::UnknownContentError : QNetworkReply::UnknownServerError;
    }
}

std::vector<Fault> refusals(const std::vector<int>& statuses)
{
    const auto with = [](int status, const QByteArray& body) {
        return [status, body](const QByteArray&) {
            return ScriptServer::httpAnswer(status, body);
        };
    };
    std::vector<Fault> faults;
    for (const int status : statuses) {
        const Code code = codeOf(status);
        faults.push_back(sends(numbered("MessageWith", status), code, with(status, serviceMessage))
                             .reading(Readable::Message));
        faults.push_back(sends(numbered("HtmlWith", status), code, with(status, html)));
        faults.push_back(sends(numbered("NothingWith", status), code, with(status, {})));
        faults.push_back(sends(numbered("GoodAnswerWith", status), code, [status](const QByteArray& answer) {
                             return ScriptServer::httpAnswer(status, answer);
                         }).reading(Readable::Answer));
        faults.push_back(
            sendsAndCloses(numbered("CutMessageWith", status), closed, [status](const QByteArray&) {
                return ScriptServer::httpAnswer(status, serviceMessage).chopped(5);
            }));
    }
    return faults;
}

QByteArray utf16(const QByteArray& text, bool hasMark)
{
    QByteArray wide = hasMark ? QByteArray("\xFF\xFE") : QByteArray();
    for (const char c : text) {
        wide += c;
        wide += '\0';
    }
    return wide;
}

std::vector<Fault> bodyFaults()
{
    constexpr int deep = 100000;
    const QByteArray text = R"({"_id":"c5","name":"Five"})";
    return {
        hasBody("Html", html),
        hasBody("Utf16", utf16(text, false)),
        hasBody("Utf16WithItsMark", utf16(text, true)),
        hasBody("Utf32", QByteArray("\xFF\xFE\0\0{\0\0\0}\0\0\0", 12)),
        hasBody("BrokenUtf8", "{\"_id\":\"c5\",\"name\":\"\xC3\"}"),
        hasBody("OverlongUtf8", "{\"_id\":\"c5\",\"name\":\"\xC0\xAF\"}"),
        hasBody("DeepArrays", QByteArray(deep, '[') + QByteArray(deep, ']')),
        hasBody("DeepObjects", QByteArray(R"({"a":)").repeated(deep) + "1" + QByteArray(deep, '}')),
        hasBody("Huge", '"' + QByteArray(int(3 * largestReply), 'x') + '"'),
        hasBody("Blank", " \r\n\t "),
        hasBody("Nul", QByteArray("\0", 1)),
        hasBody("NulBehind", text + QByteArray("\0", 1)),
        hasBody("Two", text + text),
        hasBody("CutButOfTheRightLength", text.chopped(1)),
        hasBody("NotANumber", R"({"_id":NaN})"),
        hasBody("Number", "5"),
        hasBody("Null", "null"),
        hasBody("Text", "\"text\""),
        hasBody("JavaScript", "callback(" + text + ")"),
        // The shape is the operation's affair: what is missing is empty.
        sends("OfAnotherShape", answers, [](const QByteArray&) { return whole("{}"); }).readingOther("{}"),
        sends("ArrayOfTexts", answers, [](const QByteArray&) { return whole(R"(["a"])"); })
            .readingOther("[]"),
    };
}

std::vector<Fault> headFaults()
{
    constexpr int much = 10 * 1024 * 1024;
    const auto is = [](const QByteArray& text) {
        return [text](const QByteArray&) {
            return text;
        };
    };
    return {
        sends("HeaderOf10MbInOneLine", nonsense,
              [](const QByteArray& answer) {
                  return good("X-Fill: " + QByteArray(much, 'x') + "\r\n" + lengthLine(answer.size()),
                              answer);
              }),
        sends("HeaderOf10MbInManyLines", nonsense,
              [](const QByteArray& answer) {
                  return good(("X-Fill: " + QByteArray(990, 'x') + "\r\n").repeated(much / 1000) +
                                  lengthLine(answer.size()),
                              answer);
              }),
        sendsAndCloses("OtherProtocol", nonsense, is("220 mail.example ESMTP\r\n")),
        sendsAndCloses("BodyOnly", nonsense, [](const QByteArray& answer) { return answer; }),
        sendsAndCloses("TlsAlert", nonsense, is(QByteArray("\x15\x03\x01\x00\x02\x02\x28", 7))),
        sendsAndCloses("StatusOfTwoDigits", nonsense, is("HTTP/1.1 20 OK\r\nContent-Length: 2\r\n\r\n{}")),
        sendsAndCloses("StatusIsNoNumber", nonsense, is("HTTP/1.1 OK\r\nContent-Length: 2\r\n\r\n{}")),
        sendsAndCloses("Status000", nonsense, is("HTTP/1.1 000 No\r\nContent-Length: 2\r\n\r\n{}")),
        sendsAndCloses("Status600", nonsense, is("HTTP/1.1 600 No\r\nContent-Length: 2\r\n\r\n{}"))
            .readingOther("{}"),
        sendsAndCloses("Http2", nonsense,
                       is(QByteArray("\0\0\x06\x04\0\0\0\0\0\0\x03\0\0\0\x64", 15).repeated(4))),
    };
}

std::vector<FaultGroup> allGroups()
{
    const auto trickledHead = trickle("HeaderByteByByte", {});
    return {
        {"Connection", connectionFaults()},
        {"Lengths", lengthFaults()},
        {"Chunks", chunkFaults()},
        {"Compression", compressionFaults()},
        {"InterimAnswers", interimFaults()},
        {"EmptyAnswers", emptyFaults()},
        {"Redirects", redirects()},
        {"ClientErrors",
         refusals({400, 401, 402, 403, 404, 405, 407, 408, 409, 410, 413, 418, 422, 429, 431, 499})},
        {"ServerErrors", refusals({500, 501, 502, 503, 504, 505, 599})},
        {"Bodies", bodyFaults()},
        {"Heads", headFaults()},
        // Each of these lasts as long as its deadline, for every operation.
        {"NeverAccepts", {unseen("NeverAccepts", late, Arrival::NotAccepted).endedByDeadline(shortDeadline)}},
        {"NeverAnswers", {sendsAndWaits("NeverAnswers", [](const QByteArray&) { return QByteArray(); })}},
        {"SilentWithinTheHeader",
         {sendsAndWaits("SilentWithinTheHeader",
                        [](const QByteArray&) { return "HTTP/1.1 200 OK\r\nCont"; })}},
        {"SilentWithinTheBody",
         {sendsAndWaits("SilentWithinTheBody",
                        [](const QByteArray& answer) { return whole(answer).chopped(1); })}},
        {"SilentWithoutALength",
         {sendsAndWaits("SilentWithoutALength",
                        [](const QByteArray& answer) { return good(json, answer); })}},
        {"SilentBeforeTheLastChunk",
         {sendsAndWaits("SilentBeforeTheLastChunk",
                        [](const QByteArray& answer) { return chunked(chunk(answer)); })}},
        {"SilentAfterContinue",
         {sendsAndWaits("SilentAfterContinue",
                        [](const QByteArray&) { return withHead("100 Continue\r\n", {}); })}},
        {"HeaderByteByByte", {trickledHead}},
        {"BodyByteByByte", {trickle("BodyByteByByte", good(lengthLine(100000), {}))}},
    };
}

} // namespace

const std::vector<FaultGroup>& faultGroups()
{
    static const std::vector<FaultGroup> groups = allGroups();
    return groups;
}
