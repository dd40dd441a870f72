#include "http/RequestHead.h"

#include "http/RefusedRequest.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace monitorservice {

namespace {

constexpr std::string_view lineEnd = "\r\n";

char toLower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool equalsIgnoringCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return toLower(a) == toLower(b); });
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isAlphanumeric(char character)
{
    const char lower = toLower(character);
    return (lower >= 'a' && lower <= 'z') || isDigit(character);
}

bool isTokenCharacter(char character)
{
    return isAlphanumeric(character) ||
           (character != '\0' && std::strchr("!#$%&'*+-.^_`|~", character) != nullptr);
}

bool isToken(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), isTokenCharacter);
}

bool isHostCharacter(char character)
{
    return isAlphanumeric(character) ||
           (character != '\0' && std::strchr("-._~%!$&'()*+,;=:[]", character) != nullptr);
}

bool isBlank(char character)
{
    return character == ' ' || character == '\t';
}

bool isFieldValueCharacter(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte == '\t' || (byte >= 0x20 && byte != 0x7F);
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Takes one line off the text, without its CRLF; a CR or LF within it is refused.
std::string_view takeLine(std::string_view& text)
{
    const std::size_t end = text.find(lineEnd);
    const std::string_view line = text.substr(0, end);
    if (end == std::string_view::npos || line.find_first_of(lineEnd) != std::string_view::npos) {
        throw RefusedRequest(400, "a line of the header does not end in CR LF");
    }
    text.remove_prefix(end + lineEnd.size());
    return line;
}

bool isVersion(std::string_view text)
{
    return text.size() == 8 && text.substr(0, 5) == "HTTP/" && isDigit(text[5]) && text[6] == '.' &&
           isDigit(text[7]);
}

// Reads METHOD SP TARGET SP VERSION into the head; true for HTTP/1.1, false for HTTP/1.0.
bool parseRequestLine(std::string_view line, const HttpLimits& limits, RequestHead& head)
{
    const std::size_t methodEnd = line.find(' ');
    const std::size_t targetEnd = line.rfind(' ');
    if (methodEnd == std::string_view::npos || targetEnd == methodEnd ||
        !isToken(line.substr(0, methodEnd))) {
        throw RefusedRequest(400, "the request line is not METHOD ADDRESS VERSION");
    }
    head.method = line.substr(0, methodEnd);
    const std::string_view target = line.substr(methodEnd + 1, targetEnd - methodEnd - 1);
    const std::string_view version = line.substr(targetEnd + 1);

    if (!isVersion(version)) {
        throw RefusedRequest(400, "the request line does not end in an HTTP version");
    }
    if (version != "HTTP/1.1" && version != "HTTP/1.0") {
        throw RefusedRequest(505, "only HTTP/1.1 and HTTP/1.0 are spoken here");
    }
    if (head.method == "TRACE" || head.method == "CONNECT") {
        throw RefusedRequest(501, "the method " + head.method + " is not implemented");
    }
    if (target.size() > limits.longestTarget) {
        throw RefusedRequest(414,
                             "the address is longer than " + std::to_string(limits.longestTarget) + " bytes");
    }
    head.target = target;
    return version == "HTTP/1.1";
}

// The fields that may stand once at most and matter here, by their place in the header.
struct SingleFields
{
    std::optional<std::string_view> host, contentLength, transferEncoding, authorization, contentType,
        contentEncoding, expect;
};

void setOnce(std::optional<std::string_view>& field, std::string_view name, std::string_view value)
{
    if (field) {
        throw RefusedRequest(400, "the field " + std::string(name) + " stands more than once");
    }
    field = value;
}

bool closesConnection(std::string_view value)
{
    while (!value.empty()) {
        const std::size_t end = std::min(value.find(','), value.size());
        if (equalsIgnoringCase(trimmed(value.substr(0, end)), "close")) {
            return true;
        }
        value.remove_prefix(std::min(end + 1, value.size()));
    }
    return false;
}

void takeField(std::string_view line, SingleFields& fields, bool& isClosed)
{
    if (isBlank(line.front())) {
        throw RefusedRequest(400, "a field of the header is folded over several lines");
    }
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || !isToken(line.substr(0, colon))) {
        throw RefusedRequest(400, "a line of the header is not NAME: VALUE");
    }
    const std::string_view name = line.substr(0, colon);
    const std::string_view value = trimmed(line.substr(colon + 1));
    if (!std::all_of(value.begin(), value.end(), isFieldValueCharacter)) {
        throw RefusedRequest(400, "a field of the header holds a control character");
    }

    struct Known
    {
        std::string_view name;
        std::optional<std::string_view>* field;
    };
    const Known known[] = {
        {"Host", &fields.host},
        {"Content-Length", &fields.contentLength},
        {"Transfer-Encoding", &fields.transferEncoding},
        {"Authorization", &fields.authorization},
        {"Content-Type", &fields.contentType},
        {"Content-Encoding", &fields.contentEncoding},
        {"Expect", &fields.expect},
    };
    for (const Known& entry : known) {
        if (equalsIgnoringCase(name, entry.name)) {
            return setOnce(*entry.field, entry.name, value);
        }
    }
    if (equalsIgnoringCase(name, "Connection")) {
        isClosed = isClosed || closesConnection(value);
    }
}

void checkHost(const std::optional<std::string_view>& host, bool isVersion11)
{
    if (!host && isVersion11) {
        throw RefusedRequest(400, "the field Host is missing");
    }
    if (host && !std::all_of(host->begin(), host->end(), isHostCharacter)) {
        throw RefusedRequest(400, "the field Host is not a host and port");
    }
}

// A length too large for any integer is too large a body, not a malformed length.
std::uint64_t parseContentLength(std::string_view text, const HttpLimits& limits)
{
    if (text.empty() || !std::all_of(text.begin(), text.end(), isDigit)) {
        throw RefusedRequest(400, "the field Content-Length is not a number");
    }
    std::uint64_t length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (error != std::errc() || length > limits.largestBody) {
        throw RefusedRequest(413, "the body is larger than " + std::to_string(limits.largestBody) + " bytes");
    }
    return length;
}

void parseFraming(const SingleFields& fields, bool isVersion11, const HttpLimits& limits, RequestHead& head)
{
    if (fields.transferEncoding) {
        if (fields.contentLength) {
            throw RefusedRequest(400, "Content-Length and Transfer-Encoding stand together");
        }
        if (!isVersion11) {
            throw RefusedRequest(400, "HTTP/1.0 has no Transfer-Encoding");
        }
        if (!equalsIgnoringCase(*fields.transferEncoding, "chunked")) {
            throw RefusedRequest(501, "no Transfer-Encoding but chunked is implemented");
        }
        head.isChunked = true;
    }
    if (fields.contentEncoding && !equalsIgnoringCase(*fields.contentEncoding, "identity")) {
        throw RefusedRequest(415, "a body with a Content-Encoding is not accepted");
    }
    if (fields.expect && isVersion11) {
        if (!equalsIgnoringCase(*fields.expect, "100-continue")) {
            throw RefusedRequest(417, "no expectation but 100-continue can be met");
        }
        head.expectsContinue = true;
    }
    if (fields.contentLength) {
        head.contentLength = parseContentLength(*fields.contentLength, limits);
    }
}

} // namespace

std::optional<std::size_t> findHeadEnd(std::string_view text, std::size_t& examined)
{
    if (!text.empty() && !isTokenCharacter(text.front())) {
        throw RefusedRequest(400, "this is not HTTP");
    }
    for (;;) {
        const std::size_t newline = text.find('\n', examined);
        if (newline == std::string_view::npos) {
            examined = text.size();
            return std::nullopt;
        }
        if (newline == 0 || text[newline - 1] != '\r') {
            throw RefusedRequest(400, "a line of the header does not end in CR LF");
        }
        examined = newline + 1;
        if (newline >= 3 && text[newline - 2] == '\n') {
            return newline + 1;
        }
    }
}

RequestHead parseRequestHead(std::string_view text, const HttpLimits& limits)
{
    RequestHead head;
    const bool isVersion11 = parseRequestLine(takeLine(text), limits, head);

    SingleFields fields;
    bool isClosed = !isVersion11;
    std::size_t count = 0;
    for (std::string_view line = takeLine(text); !line.empty(); line = takeLine(text)) {
        if (++count > limits.mostFields) {
            throw RefusedRequest(431,
                                 "the header has more than " + std::to_string(limits.mostFields) + " fields");
        }
        takeField(line, fields, isClosed);
    }
    checkHost(fields.host, isVersion11);
    parseFraming(fields, isVersion11, limits, head);

    head.isKeptAlive = !isClosed;
    if (fields.authorization) {
        head.authorization = std::string(*fields.authorization);
    }
    if (fields.contentType) {
        head.contentType = std::string(*fields.contentType);
    }
    return head;
}

} // namespace monitorservice
