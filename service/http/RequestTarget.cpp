#include "http/RequestTarget.h"

#include "http/RefusedRequest.h"

#include <simdjson.h>

#include <algorithm>

namespace monitorservice {

namespace {

int hexDigit(char character)
{
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    if (character >= 'a' && character <= 'f') {
        return character - 'a' + 10;
    }
    if (character >= 'A' && character <= 'F') {
        return character - 'A' + 10;
    }
    return -1;
}

std::string percentDecoded(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        const int high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
        if (high < 0 || low < 0) {
            throw RefusedRequest(400, "a % in the address is not followed by two hexadecimal digits");
        }
        if (high == 0 && low == 0) {
            throw RefusedRequest(400, "the address holds %00");
        }
        decoded += static_cast<char>(high * 16 + low);
        i += 2;
    }
    if (!simdjson::validate_utf8(decoded.data(), decoded.size())) {
        throw RefusedRequest(400, "the address is not UTF-8 after percent-decoding");
    }
    return decoded;
}

// Calls take with each piece between the delimiters, empty ones included.
template <typename Take>
void split(std::string_view text, char delimiter, Take take)
{
    for (;;) {
        const std::size_t end = std::min(text.find(delimiter), text.size());
        take(text.substr(0, end));
        if (end == text.size()) {
            return;
        }
        text.remove_prefix(end + 1);
    }
}

} // namespace

RequestTarget parseRequestTarget(std::string_view target)
{
    if (target.empty() || target.front() != '/') {
        throw RefusedRequest(400, "the address must begin with /");
    }
    for (const char character : target) {
        if (character == '#') {
            throw RefusedRequest(400, "the address holds a fragment; write # as %23");
        }
        if (character <= ' ' || character > '~') {
            throw RefusedRequest(400, "the address holds a character that must be percent-encoded");
        }
    }

    RequestTarget parsed;
    const std::size_t pathEnd = std::min(target.find('?'), target.size());
    split(target.substr(1, pathEnd - 1), '/',
          [&](std::string_view segment) { parsed.path.push_back(percentDecoded(segment)); });
    if (pathEnd == target.size()) {
        return parsed;
    }
    split(target.substr(pathEnd + 1), '&', [&](std::string_view parameter) {
        if (parameter.empty()) {
            return;
        }
        const std::size_t nameEnd = std::min(parameter.find('='), parameter.size());
        const std::string_view value =
            nameEnd == parameter.size() ? std::string_view() : parameter.substr(nameEnd + 1);
        parsed.parameters.emplace_back(percentDecoded(parameter.substr(0, nameEnd)), percentDecoded(value));
    });
    return parsed;
}

std::string encodedSegment(std::string_view text)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    constexpr std::string_view asTheyAre =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    std::string encoded;
    for (const char character : text) {
        if (asTheyAre.find(character) != std::string_view::npos) {
            encoded += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        encoded += '%';
        encoded += digits[byte >> 4U];
        encoded += digits[byte & 0x0fU];
    }
    return encoded;
}

} // namespace monitorservice
