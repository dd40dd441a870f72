#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace monitorservice {

/// Appends the text as a JSON string (RFC 8259, section 7), quotes included. Characters outside ASCII stay as
/// they are; the text must be valid UTF-8.
void appendJsonString(std::string& out, std::string_view text);

/// Appends a finite number in a short form that reads back as the same. From 1e17 on it has an exponent: RFC
/// 8259, section 6, leaves it to the reader what becomes of whole numbers that 64 bits cannot hold.
void appendJsonNumber(std::string& out, double value);

/// Appends a whole number.
void appendJsonInteger(std::string& out, std::int64_t value);

/// Writes one JSON object member by member; the caller sees to it that names differ.
class JsonObjectWriter
{
public:
    JsonObjectWriter& text(std::string_view name, std::string_view value);
    JsonObjectWriter& integer(std::string_view name, std::int64_t value);
    /// A finite number, in the shortest form that reads back as the same.
    JsonObjectWriter& number(std::string_view name, double value);
    JsonObjectWriter& boolean(std::string_view name, bool value);
    JsonObjectWriter& null(std::string_view name);
    /// A value that is JSON text already.
    JsonObjectWriter& json(std::string_view name, std::string_view value);

    /// The object; the writer is spent.
    std::string finish();

private:
    void begin(std::string_view name);

    std::string m_text = "{";
};

/// Writes one JSON array of values that are JSON text already.
class JsonArrayWriter
{
public:
    JsonArrayWriter& json(std::string_view value);
    JsonArrayWriter& text(std::string_view value);

    /// The length of what has been written so far.
    std::size_t size() const { return m_text.size(); }
    /// The array; the writer is spent.
    std::string finish();

private:
    void begin();

    std::string m_text = "[";
};

} // namespace monitorservice
