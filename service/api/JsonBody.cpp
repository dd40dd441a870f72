#include "api/JsonBody.h"

#include "api/ApiError.h"

#include <limits>
#include <unordered_set>

namespace monitorservice {

namespace {

constexpr std::size_t largestBody = 1024 * 1024;
constexpr std::size_t longestText = 4096;
constexpr std::size_t mostElements = 1000;

} // namespace

JsonBody::JsonBody(std::string_view text)
{
    if (text.size() > largestBody) {
        throw ApiError(413, "the body is larger than " + std::to_string(largestBody) + " bytes");
    }
    simdjson::dom::element root;
    if (const auto error = m_parser.parse(text.data(), text.size()).get(root)) {
        throw ApiError(400, std::string("the body is not JSON: ") + simdjson::error_message(error));
    }
    if (root.get(m_object) != simdjson::SUCCESS) {
        throw ApiError(400, "the body must be a JSON object");
    }
}

void forEachMember(simdjson::dom::object object, const std::string& where,
                   const std::function<void(std::string_view, simdjson::dom::element)>& visit)
{
    std::unordered_set<std::string_view> names;
    for (const auto member : object) {
        if (!names.insert(member.key).second) {
            throw ApiError(400, "\"" + where + std::string(member.key) + "\" is given twice");
        }
        visit(member.key, member.value);
    }
}

std::string textOf(simdjson::dom::element value, const std::string& name)
{
    std::string_view text;
    if (value.get(text) != simdjson::SUCCESS) {
        throw ApiError(400, "\"" + name + "\" must be a text");
    }
    if (text.size() > longestText) {
        throw ApiError(400, "\"" + name + "\" is longer than " + std::to_string(longestText) + " bytes");
    }
    // An escape may stand for half a surrogate pair, which UTF-8 has no form for.
    if (text.find('\0') != std::string_view::npos || !simdjson::validate_utf8(text)) {
        throw ApiError(400, "\"" + name + "\" holds U+0000 or half a surrogate pair");
    }
    return std::string(text);
}

std::string nonEmptyTextOf(simdjson::dom::element value, const std::string& name)
{
    std::string text = textOf(value, name);
    if (text.empty()) {
        throw ApiError(400, "\"" + name + "\" must not be empty");
    }
    return text;
}

simdjson::dom::array arrayOf(simdjson::dom::element value, const std::string& name)
{
    simdjson::dom::array array;
    if (value.get(array) != simdjson::SUCCESS) {
        throw ApiError(400, "\"" + name + "\" must be an array");
    }
    if (array.size() > mostElements) {
        throw ApiError(400, "\"" + name + "\" has more than " + std::to_string(mostElements) + " elements");
    }
    return array;
}

std::int32_t integerOf(simdjson::dom::element value, const std::string& name)
{
    std::int64_t number = 0;
    using Limits = std::numeric_limits<std::int32_t>;
    if (value.get(number) != simdjson::SUCCESS || number < Limits::min() || number > Limits::max()) {
        throw ApiError(400, "\"" + name + "\" must be a whole number of 32 bits");
    }
    return static_cast<std::int32_t>(number);
}

double numberOf(simdjson::dom::element value, const std::string& name)
{
    double number = 0;
    if (!value.is_number() || value.get(number) != simdjson::SUCCESS) {
        throw ApiError(400, "\"" + name + "\" must be a number");
    }
    return number;
}

void requireMember(bool present, const std::string& name)
{
    if (!present) {
        throw ApiError(400, "\"" + name + "\" is missing");
    }
}

simdjson::dom::object objectOf(simdjson::dom::element value, const std::string& name)
{
    simdjson::dom::object object;
    if (value.get(object) != simdjson::SUCCESS) {
        throw ApiError(400, "\"" + name + "\" must be an object");
    }
    return object;
}

} // namespace monitorservice
