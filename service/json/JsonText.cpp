#include "json/JsonText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

namespace monitorservice {

namespace {

void appendEscaped(std::string& out, char character)
{
    switch (character) {
    case '"':
        out += "\\\"";
        return;
    case '\\':
        out += "\\\\";
        return;
    case '\b':
        out += "\\b";
        return;
    case '\f':
        out += "\\f";
        return;
    case '\n':
        out += "\\n";
        return;
    case '\r':
        out += "\\r";
        return;
    case '\t':
        out += "\\t";
        return;
    default:
        break;
    }
    std::array<char, 8> escape{};
    std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(character));
    out += escape.data();
}

} // namespace

void appendJsonString(std::string& out, std::string_view text)
{
    out += '"';
    std::size_t plain = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        const bool escape =
            static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\';
        if (escape) {
            out.append(text.substr(plain, i - plain));
            appendEscaped(out, character);
            plain = i + 1;
        }
    }
    out.append(text.substr(plain));
    out += '"';
}

void appendJsonNumber(std::string& out, double value)
{
    // Well within 64 bits: readers of JSON refuse whole numbers in digits that do not fit, or change them.
    constexpr double largestInDigits = 1e17;
    const double number = value == 0 ? 0 : value; // "-0" would come back as 0 all the same
    std::array<char, 32> text{};
    char* const begin = text.data();
    char* const end = begin + text.size();
    const std::to_chars_result written =
        std::abs(number) < largestInDigits ? std::to_chars(begin, end, number)
                                           : std::to_chars(begin, end, number, std::chars_format::scientific);
    out.append(begin, written.ptr);
}

void appendJsonInteger(std::string& out, std::int64_t value)
{
    std::array<char, 24> text{};
    out.append(text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr);
}

void JsonObjectWriter::begin(std::string_view name)
{
    if (m_text.size() > 1) {
        m_text += ',';
    }
    appendJsonString(m_text, name);
    m_text += ':';
}

JsonObjectWriter& JsonObjectWriter::text(std::string_view name, std::string_view value)
{
    begin(name);
    appendJsonString(m_text, value);
    return *this;
}

JsonObjectWriter& JsonObjectWriter::integer(std::string_view name, std::int64_t value)
{
    return json(name, std::to_string(value));
}

JsonObjectWriter& JsonObjectWriter::number(std::string_view name, double value)
{
    begin(name);
    appendJsonNumber(m_text, value);
    return *this;
}

JsonObjectWriter& JsonObjectWriter::boolean(std::string_view name, bool value)
{
    return json(name, value ? "true" : "false");
}

JsonObjectWriter& JsonObjectWriter::null(std::string_view name)
{
    return json(name, "null");
}

JsonObjectWriter& JsonObjectWriter::json(std::string_view name, std::string_view value)
{
    begin(name);
    m_text += value;
    return *this;
}

std::string JsonObjectWriter::finish()
{
    m_text += '}';
    return std::move(m_text);
}

void JsonArrayWriter::begin()
{
    if (m_text.size() > 1) {
        m_text += ',';
    }
}

JsonArrayWriter& JsonArrayWriter::json(std::string_view value)
{
    begin();
    m_text += value;
    return *this;
}

JsonArrayWriter& JsonArrayWriter::text(std::string_view value)
{
    begin();
    appendJsonString(m_text, value);
    return *this;
}

std::string JsonArrayWriter::finish()
{
    m_text += ']';
    return std::move(m_text);
}

} // namespace monitorservice
