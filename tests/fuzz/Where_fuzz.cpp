// Input: a where document on the first line, then a document per line. What the matcher says must hold
// together, and the rows that SQL is narrowed to must hold every row that matches; no other when narrowing
// says that it is exact, or when the patterns that it leaves are found in the columns.

#include "Fuzzer.h"
#include "query/AnyOf.h"
#include "query/Matcher.h"
#include "query/PatternSearch.h"
#include "query/QueryError.h"
#include "store/sql/Narrowing.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

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

// A table of one document, with columns as the store makes them.
class Row
{
public:
    Row()
    {
        m_database.exec("CREATE TABLE cells (document TEXT NOT NULL, name TEXT GENERATED ALWAYS AS (" +
                        generatedTextColumn("document", "name") +
                        ") STORED, category TEXT GENERATED ALWAYS AS (" +
                        generatedTextColumn("document", "category") + ") VIRTUAL, created_ms INTEGER)");
        m_insert.emplace(m_database, "INSERT INTO cells (document, created_ms) VALUES (?, ?)");
        m_delete.emplace(m_database, "DELETE FROM cells");
        m_isUniform.emplace(m_database, "SELECT typeof(name) <> 'blob' AND typeof(category) <> 'blob' AND "
                                        "typeof(created_ms) <> 'blob' FROM cells");
    }

    // False when SQLite does not take the text for JSON.
    bool set(std::string_view json, dom::element document)
    {
        m_delete->exec();
        m_delete->reset();
        m_insert->reset();
        m_insert->bind(1, std::string(json));
        bindTime(document["createdAt"]);
        try {
            m_insert->exec();
        } catch (const SQLite::Exception&) {
            m_insert->tryReset();
            return false;
        }
        return true;
    }

    // Whether the document keeps what narrowing may be promised of the columns.
    bool isUniform()
    {
        m_isUniform->reset();
        m_isUniform->executeStep();
        const bool uniform = m_isUniform->getColumn(0).getInt() != 0;
        m_isUniform->reset();
        return uniform;
    }

    bool isSelectedBy(const Narrowing& narrowing)
    {
        SQLite::Statement statement(m_database, "SELECT 1 FROM cells WHERE " + narrowing.sql);
        require(statement.getBindParameterCount() == static_cast<int>(narrowing.values.size()),
                "a value is bound for each place", [&] { return narrowing.sql; });
        int place = 0;
        for (const SqlValue& value : narrowing.values) {
            ++place;
            std::visit([&](const auto& bound) { statement.bind(place, bound); }, value);
        }
        return statement.executeStep();
    }

    // Whether the patterns that are left are found in the columns; nothing when one takes too many steps.
    std::optional<bool> holdsPatterns(const Narrowing& narrowing)
    {
        PatternSearch search;
        try {
            return !anyOf(narrowing.patterns, [&](const ColumnPattern& one) {
                SQLite::Statement statement(m_database, "SELECT " + one.sql + " FROM cells");
                statement.executeStep();
                const SQLite::Column text = statement.getColumn(0);
                return text.isNull() || !search.finds(*one.pattern, text.getString());
            });
        } catch (const QueryError&) {
            return std::nullopt;
        }
    }

private:
    void bindTime(const simdjson::simdjson_result<dom::element>& member)
    {
        m_insert->bind(2);
        if (member.error() != simdjson::SUCCESS || member.is_null()) {
            return;
        }
        std::string_view text;
        const bool isText = member.get(text) == simdjson::SUCCESS;
        const std::optional<Timestamp> time = isText ? parseTimestamp(text) : std::nullopt;
        if (time) {
            m_insert->bind(2, time->milliseconds);
        } else {
            m_insert->bind(2, "", 0);
        }
    }

    SQLite::Database m_database{":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE};
    std::optional<SQLite::Statement> m_insert;
    std::optional<SQLite::Statement> m_delete;
    std::optional<SQLite::Statement> m_isUniform;
};

std::vector<NarrowableField> fields(bool uniform)
{
    return {{"name", "name", FieldKind::Text, uniform},
            {"category", "category", FieldKind::Text, uniform},
            {"createdAt", "created_ms", FieldKind::Time, uniform},
            {"alarmTo",
             "EXISTS (SELECT 1 FROM json_each(document, '$.alarmTo') WHERE value IN ({}) OR "
             "instr(cells.document, '\\u0000') > 0)",
             FieldKind::TextSet, false}};
}

// Nothing when a pattern takes too many steps.
std::optional<bool> matches(const Where& where, dom::element document)
{
    try {
        return where.matches(document);
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
    static Row row;
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
    if (!row.set(json, document)) {
        return;
    }
    const Narrowing odd = narrow(where, fields(false));
    require(!*isMatch || row.isSelectedBy(odd), "SQL loses no row that matches", [&] { return odd.sql; });
    require(!odd.exact || row.isSelectedBy(odd) == *isMatch, "exact narrowing selects what matches",
            [&] { return odd.sql; });
    if (!row.isUniform()) {
        return;
    }
    const Narrowing uniform = narrow(where, fields(true));
    require(!*isMatch || row.isSelectedBy(uniform), "SQL loses no uniform row that matches",
            [&] { return uniform.sql; });
    require(!uniform.exact || row.isSelectedBy(uniform) == *isMatch,
            "exact narrowing selects the uniform rows that match", [&] { return uniform.sql; });
    if (uniform.patterns.empty() || !row.isSelectedBy(uniform)) {
        return;
    }
    const std::optional<bool> holds = row.holdsPatterns(uniform);
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
