// Input: a where document on the first line, then a document per line. What the matcher says must hold
// together, and the rows that a database is narrowed to must hold every row that matches; no other when
// narrowing says that it is exact, or when the patterns that it leaves are found in the columns.

#include "Fuzzer.h"
#include "query/AnyOf.h"
#include "query/Matcher.h"
#include "query/PatternSearch.h"
#include "query/QueryError.h"
#include "unit/service/store/sql/NarrowedTable.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {
namespace {

using fuzz::require;
namespace dom = simdjson::dom;

constexpr std::size_t mostDocuments = 8;
constexpr std::size_t longestDocument = 2048;

// What the service keeps: objects without a key given twice and without halves of surrogate pairs.
bool isStorable(dom::element value)
{
    dom::array list;
    if (value.get(list) == simdjson::SUCCESS) {
        return !anyOf(list, [](dom::element member) { return !isStorable(member); });
    }
    std::string_view text;
    if (value.get(text) == simdjson::SUCCESS) {
        return simdjson::validate_utf8(text);
    }
    dom::object object;
    if (value.get(object) != simdjson::SUCCESS) {
        return true;
    }
    std::vector<std::string_view> keys;
    for (const dom::key_value_pair& member : object) {
        if (!isStorable(member.value) || !simdjson::validate_utf8(member.key)) {
            return false;
        }
        keys.push_back(member.key);
    }
    std::sort(keys.begin(), keys.end());
    return std::adjacent_find(keys.begin(), keys.end()) == keys.end();
}

// Whether the patterns that are left are found in the columns; nothing when one takes too many steps.
std::optional<bool> holdsPatterns(const Narrowing& narrowing, dom::element document)
{
    PatternSearch search;
    try {
        return !anyOf(narrowing.patterns, [&](const ColumnPattern& one) {
            const std::optional<std::string> text = textOf(one, document).text;
            return !text || !search.finds(*one.pattern, *text);
        });
    } catch (const QueryError&) {
        return std::nullopt;
    }
}

// Nothing when a pattern takes too many steps.
std::optional<bool> matches(const Where& where, dom::element document)
{
    try {
        return Matcher(where).matches(document);
    } catch (const QueryError& error) {
        require(error.status() == 422, "only a pattern's steps end a search", [&] { return error.what(); });
        return std::nullopt;
    }
}

std::optional<Where> parsed(std::string_view json)
{
    try {
        return Where::parse(json);
    } catch (const QueryError& error) {
        const std::string message = error.what();
        require(error.status() == 400 && message.rfind("where: ", 0) == 0,
                "a where document is refused as bad input", [&] { return message; });
        require(simdjson::validate_utf8(message), "the refusal can be sent", [&] { return message; });
        return std::nullopt;
    }
}

// The conditions one by one must say what they say together.
void checkConjunction(const Where& where, dom::element document, bool together)
{
    bool each = true;
    for (const Condition& condition : where.conditions()) {
        const auto [asked, others] = where.split({condition.path});
        const std::optional<bool> first = matches(asked, document);
        const std::optional<bool> second = matches(others, document);
        if (!first || !second) {
            return;
        }
        require((*first && *second) == together, "parts of a where document say what the whole says");
        each = each && *first;
    }
    require(each == together, "conditions hold together when each holds");
}

std::string quotedText(std::string_view text)
{
    std::string result = "\"";
    for (const char c : text) {
        constexpr std::string_view digits = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || c == '"' || c == '\\') {
            result.append("\\u00").append(1, digits[byte >> 4U]).append(1, digits[byte & 15U]);
        } else {
            result += c;
        }
    }
    return result + "\"";
}

// "equals", "is one of", "is not" and "is none of" the same value.
void checkOpposites(std::string_view json, dom::element document)
{
    dom::parser parser;
    const dom::object conditions = parser.parse(json).get_object().value();
    for (const dom::key_value_pair& member : conditions) {
        const std::string value = simdjson::minify(member.value);
        const auto ask = [&](const std::string& begin, const std::string& end) -> std::optional<bool> {
            const auto where = parsed("{" + quotedText(member.key) + ":{" + begin + value + end + "}}");
            return where ? matches(*where, document) : std::nullopt;
        };
        const auto equalWhere = parsed("{" + quotedText(member.key) + ":" + value + "}");
        const std::optional<bool> isNot = ask(R"("$ne":)", "");
        const std::optional<bool> isIn = ask(R"("$in":[)", "]");
        const std::optional<bool> isNotIn = ask(R"("$nin":[)", "]");
        if (!equalWhere || !isNot || !isIn || !isNotIn) {
            continue;
        }
        const std::optional<bool> isEqual = matches(*equalWhere, document);
        require(isEqual && *isEqual != *isNot && *isIn == *isEqual && *isNotIn != *isIn,
                "equal, $ne, $in and $nin agree", [&] { return value; });
    }
}

void checkDocument(std::string_view whereText, const Where& where, std::string_view json)
{
    static NarrowedTable table;
    dom::parser parser;
    dom::element document;
    if (parser.parse(json.data(), json.size()).get(document) != simdjson::SUCCESS || !document.is_object() ||
        !isStorable(document)) {
        return;
    }
    const std::optional<bool> isMatch = matches(where, document);
    if (!isMatch) {
        return;
    }
    checkConjunction(where, document, *isMatch);
    checkOpposites(whereText, document);
    if (!NarrowedTable::isUniform(document)) {
        return;
    }
    table.clear();
    table.insert(document);
    const Narrowing narrowing = NarrowedTable::narrowed(where);
    const bool isSelected = !table.select(narrowing).empty();
    const auto condition = [&narrowing] {
        return narrowing.condition.text({});
    };
    require(!*isMatch || isSelected, "narrowing loses no row that matches", condition);
    require(!narrowing.exact || isSelected == *isMatch, "exact narrowing selects what matches", condition);
    if (narrowing.patterns.empty() || !isSelected) {
        return;
    }
    const std::optional<bool> holds = holdsPatterns(narrowing, document);
    require(!holds || *holds == *isMatch, "patterns tell which selected rows match",
            [&] { return std::string(whereText); });
}

void tryInput(std::string_view input)
{
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string whereText(input.substr(0, end));
    const std::optional<Where> where = parsed(whereText);
    if (!where) {
        return;
    }
    input.remove_prefix(std::min(end + 1, input.size()));
    for (std::size_t i = 0; i < mostDocuments && !input.empty(); ++i) {
        const std::size_t lineEnd = std::min(input.find('\n'), input.size());
        if (lineEnd <= longestDocument) {
            checkDocument(whereText, *where, std::string(input.substr(0, lineEnd)));
        }
        input.remove_prefix(std::min(lineEnd + 1, input.size()));
    }
}

} // namespace
} // namespace monitorservice

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    monitorservice::tryInput({reinterpret_cast<const char*>(data), size});
    return 0;
}
