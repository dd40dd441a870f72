#pragma once

#include <simdjson.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace monitorservice {

/// A request's body read as one JSON object. Errors are ApiError 400 and name the member.
class JsonBody
{
public:
    /// Throws for what is not JSON, not UTF-8 or not an object, and 413 for more than 1 MiB.
    explicit JsonBody(std::string_view text);

    simdjson::dom::object object() const { return m_object; }

private:
    simdjson::dom::parser m_parser;
    simdjson::dom::object m_object;
};

/// Calls `visit` with each member's name and value. Throws for a name that is given twice; `where` stands
/// before the name in the message, such as "links[2].".
void forEachMember(simdjson::dom::object object, const std::string& where,
                   const std::function<void(std::string_view, simdjson::dom::element)>& visit);

/// The value as a text of at most 4096 bytes without U+0000, which no database keeps reliably.
std::string textOf(simdjson::dom::element value, const std::string& name);

/// The same, and not empty.
std::string nonEmptyTextOf(simdjson::dom::element value, const std::string& name);

/// The value as an array of at most 1000 elements.
simdjson::dom::array arrayOf(simdjson::dom::element value, const std::string& name);

/// The value as a whole number of 32 bits.
std::int32_t integerOf(simdjson::dom::element value, const std::string& name);

/// The value as a number, be it written with a fraction or without.
double numberOf(simdjson::dom::element value, const std::string& name);

/// Throws when a member that a new document needs was not sent.
void requireMember(bool present, const std::string& name);

/// The value as an object.
simdjson::dom::object objectOf(simdjson::dom::element value, const std::string& name);

} // namespace monitorservice
