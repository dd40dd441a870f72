#include "json/JsonPieces.h"

#include <algorithm>

namespace monitorservice {

namespace {

constexpr std::string_view blanks = " \t\n\r";

// The length of the string that begins the text, quotes included; the text's length when it does not end.
std::size_t stringLength(std::string_view text)
{
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '"') {
            return i + 1;
        }
        i += text[i] == '\\' ? 1 : 0;
    }
    return text.size();
}

// The length of the object or array that begins the text; the text's length when it does not end.
std::size_t bracketedLength(std::string_view text)
{
    std::size_t depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        switch (text[i]) {
        case '"':
            i += stringLength(text.substr(i)) - 1;
            break;
        case '{':
        case '[':
            ++depth;
            break;
        case '}':
        case ']':
            if (--depth == 0) {
                return i + 1;
            }
            break;
        default:
            break;
        }
    }
    return text.size();
}

// The length of the value that begins the text; 0 when none does.
std::size_t valueLength(std::string_view text)
{
    if (text.empty()) {
        return 0;
    }
    switch (text.front()) {
    case '"':
        return stringLength(text);
    case '{':
    case '[':
        return bracketedLength(text);
    default:
        return std::min(text.find_first_of(" \t\n\r,]}"), text.size());
    }
}

} // namespace

std::string_view withoutLeadingBlanks(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text;
}

JsonArrayPieces::JsonArrayPieces(std::string_view text) : m_rest(withoutLeadingBlanks(text))
{
    if (m_rest.empty() || m_rest.front() != '[') {
        throw JsonPieceError("an array is expected");
    }
    m_rest.remove_prefix(1);
}

std::optional<std::string_view> JsonArrayPieces::next()
{
    m_rest = withoutLeadingBlanks(m_rest);
    if (m_rest.empty()) {
        throw JsonPieceError("the array does not end");
    }
    if (m_rest.front() == ']') {
        requireEnd();
        return std::nullopt;
    }
    if (!m_first) {
        if (m_rest.front() != ',') {
            throw JsonPieceError("a comma is expected between two elements");
        }
        m_rest = withoutLeadingBlanks(m_rest.substr(1));
    }
    m_first = false;
    const std::size_t length = valueLength(m_rest);
    if (length == 0) {
        throw JsonPieceError("an element is expected");
    }
    const std::string_view element = m_rest.substr(0, length);
    m_rest.remove_prefix(length);
    return element;
}

void JsonArrayPieces::requireEnd()
{
    if (!withoutLeadingBlanks(m_rest.substr(1)).empty()) {
        throw JsonPieceError("something follows the end of the array");
    }
}

std::optional<std::string_view> findJsonMember(std::string_view object, std::string_view quotedName)
{
    std::string_view rest = withoutLeadingBlanks(object);
    char expected = '{';
    while (!rest.empty() && rest.front() == expected) {
        expected = ',';
        rest = withoutLeadingBlanks(rest.substr(1));
        if (rest.empty() || rest.front() != '"') {
            return std::nullopt;
        }
        const std::string_view name = rest.substr(0, stringLength(rest));
        rest = withoutLeadingBlanks(rest.substr(name.size()));
        if (rest.empty() || rest.front() != ':') {
            return std::nullopt;
        }
        rest = withoutLeadingBlanks(rest.substr(1));
        const std::string_view value = rest.substr(0, valueLength(rest));
        if (name == quotedName) {
            return value;
        }
        rest = withoutLeadingBlanks(rest.substr(value.size()));
    }
    return std::nullopt;
}

} // namespace monitorservice
