#include "json/JsonText.h"
#include "query/AnyOf.h"
#include "query/Pattern.h"
#include "query/QueryError.h"
#include "query/QuotedText.h"
#include "query/Values.h"
#include "query/Where.h"

#include <algorithm>
#include <array>
#include <string>

namespace monitorservice {

namespace dom = simdjson::dom;

namespace {

[[noreturn]] void refuse(const std::string& what)
{
    throw QueryError(400, "where: " + what);
}

[[noreturn]] void refuse(const std::string& what, std::string_view path)
{
    refuse(what + " at " + quotedText(path));
}

bool isOperator(std::string_view key)
{
    return !key.empty() && key.front() == '$';
}

std::vector<std::string_view> sortedKeys(dom::object object)
{
    std::vector<std::string_view> keys;
    for (const dom::key_value_pair& member : object) {
        keys.push_back(member.key);
    }
    std::sort(keys.begin(), keys.end());
    return keys;
}

// Refuses what is wrong anywhere in a where document, whatever it means: depth, long lists, keys given
// twice. Recurses no deeper than the depth that it allows.
void checkShape(dom::element value, std::size_t depth)
{
    dom::array list;
    dom::object object;
    const bool isList = value.get(list) == simdjson::SUCCESS;
    const bool isObject = value.get(object) == simdjson::SUCCESS;
    if ((isList || isObject) && depth > Where::maximumDepth) {
        refuse("nested deeper than " + std::to_string(Where::maximumDepth));
    }
    if (isList) {
        if (list.size() > Where::maximumListMembers) {
            refuse("a list has more than " + std::to_string(Where::maximumListMembers) + " members");
        }
        for (const dom::element member : list) {
            checkShape(member, depth + 1);
        }
    }
    if (isObject) {
        const std::vector<std::string_view> keys = sortedKeys(object);
        const auto twice = std::adjacent_find(keys.begin(), keys.end());
        if (twice != keys.end()) {
            refuse("the key " + quotedText(*twice) + " is given twice");
        }
        for (const dom::key_value_pair& member : object) {
            checkShape(member.value, depth + 1);
        }
    }
}

// Refuses operators within a value, where they would be taken for member names and match nothing.
void checkValue(dom::element value, std::string_view path)
{
    dom::array list;
    if (value.get(list) == simdjson::SUCCESS) {
        for (const dom::element member : list) {
            checkValue(member, path);
        }
    }
    dom::object object;
    if (value.get(object) == simdjson::SUCCESS) {
        for (const dom::key_value_pair& member : object) {
            if (isOperator(member.key)) {
                refuse("operator " + quotedText(member.key) + " within a value", path);
            }
            checkValue(member.value, path);
        }
    }
}

std::vector<std::string> splitPath(std::string_view path)
{
    std::vector<std::string> names;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find('.', begin), path.size());
        names.emplace_back(path.substr(begin, end - begin));
        if (names.back().empty()) {
            refuse("empty name in the path", path);
        }
        if (isOperator(names.back())) {
            refuse("unknown operator " + quotedText(names.back()), path);
        }
        begin = end + 1;
    }
    if (names.size() > Where::maximumDepth) {
        refuse("more than " + std::to_string(Where::maximumDepth) + " names in the path", path);
    }
    return names;
}

// Reads the conditions on one path.
class PathConditions
{
public:
    PathConditions(std::string_view path, std::vector<Condition>& conditions)
        : m_path(path), m_names(splitPath(path)), m_conditions(conditions)
    {
    }

    void read(dom::element value)
    {
        dom::object object;
        if (value.get(object) == simdjson::SUCCESS && hasOperator(object)) {
            readOperators(object);
        } else {
            addComparison(Operator::Equal, value);
        }
    }

private:
    static bool hasOperator(dom::object object)
    {
        return anyOf(object, [](const dom::key_value_pair& member) { return isOperator(member.key); });
    }

    void readOperators(dom::object operators)
    {
        for (const dom::key_value_pair& member : operators) {
            if (!isOperator(member.key)) {
                refuse("plain key " + quotedText(member.key) + " among operators", m_path);
            }
            if (member.key == "$regex") {
                addRegex(member.value, operators);
            } else if (member.key == "$options") {
                checkOptions(operators);
            } else if (member.key == "$exists") {
                addExists(member.value);
            } else if (member.key == "$in" || member.key == "$nin") {
                addMembership(member.key, member.value);
            } else {
                addComparison(comparison(member.key), member.value);
            }
        }
    }

    Operator comparison(std::string_view key) const
    {
        struct Name
        {
            std::string_view key;
            Operator operation;
        };
        constexpr std::array<Name, 5> comparisons{{{"$gte", Operator::GreaterOrEqual},
                                                   {"$gt", Operator::Greater},
                                                   {"$lte", Operator::LessOrEqual},
                                                   {"$lt", Operator::Less},
                                                   {"$ne", Operator::NotEqual}}};
        const auto* const found = std::find_if(comparisons.begin(), comparisons.end(),
                                               [key](const Name& candidate) { return candidate.key == key; });
        if (found == comparisons.end()) {
            refuse("unknown operator " + quotedText(key), m_path);
        }
        return found->operation;
    }

    void addComparison(Operator operation, dom::element value)
    {
        const bool needsOrder = operation != Operator::Equal && operation != Operator::NotEqual;
        if (needsOrder && value.is_null()) {
            // Null has an order only with itself: "not before null" and "not after null" are "null".
            const bool includesEqual =
                operation == Operator::GreaterOrEqual || operation == Operator::LessOrEqual;
            add(includesEqual ? Operator::Equal : Operator::In,
                includesEqual ? std::vector<Operand>{makeOperand(value)} : std::vector<Operand>{});
            return;
        }
        if (needsOrder && (value.is_array() || value.is_object())) {
            refuse("lists and objects have no order", m_path);
        }
        checkValue(value, m_path);
        add(operation, {makeOperand(value)});
    }

    void addMembership(std::string_view key, dom::element value)
    {
        dom::array list;
        if (value.get(list) != simdjson::SUCCESS) {
            refuse(std::string(key) + " needs a list", m_path);
        }
        checkValue(value, m_path);
        std::vector<Operand> operands;
        for (const dom::element member : list) {
            operands.push_back(makeOperand(member));
        }
        sortForLookup(operands);
        add(key == "$in" ? Operator::In : Operator::NotIn, std::move(operands));
    }

    void addExists(dom::element value)
    {
        if (!value.is_bool()) {
            refuse("$exists needs true or false", m_path);
        }
        add(Operator::Exists, {makeOperand(value)});
    }

    void addRegex(dom::element value, dom::object operators)
    {
        const auto patterns =
            std::count_if(m_conditions.begin(), m_conditions.end(),
                          [](const Condition& condition) { return condition.pattern != nullptr; });
        if (static_cast<std::size_t>(patterns) == Where::maximumPatterns) {
            refuse("more than " + std::to_string(Where::maximumPatterns) + " patterns", m_path);
        }
        std::string_view text;
        if (value.get(text) != simdjson::SUCCESS) {
            refuse("$regex needs a text", m_path);
        }
        std::string_view options;
        dom::element optionsValue;
        if (operators.at_key("$options").get(optionsValue) == simdjson::SUCCESS &&
            optionsValue.get(options) != simdjson::SUCCESS) {
            refuse("$options needs a text", m_path);
        }
        add(Operator::Regex, {}).pattern = std::make_shared<const Pattern>(text, options, m_path);
    }

    void checkOptions(dom::object operators) const
    {
        dom::element regex;
        if (operators.at_key("$regex").get(regex) != simdjson::SUCCESS) {
            refuse("$options without $regex", m_path);
        }
    }

    Condition& add(Operator operation, std::vector<Operand> operands)
    {
        return m_conditions.emplace_back(
            Condition{std::string(m_path), m_names, operation, std::move(operands), nullptr});
    }

    std::string_view m_path;
    std::vector<std::string> m_names;
    std::vector<Condition>& m_conditions;
};

dom::element parseValue(std::string_view json, dom::document& values)
{
    thread_local dom::parser parser;
    dom::element root;
    const simdjson::error_code error = parser.parse_into_document(values, json.data(), json.size()).get(root);
    if (error == simdjson::DEPTH_ERROR) {
        refuse("nested deeper than " + std::to_string(Where::maximumDepth));
    }
    if (error != simdjson::SUCCESS) {
        refuse(std::string("not valid JSON: ") + simdjson::error_message(error));
    }
    return root;
}

dom::object parseObject(std::string_view json, dom::document& values)
{
    if (json.size() > Where::maximumBytes) {
        refuse("longer than " + std::to_string(Where::maximumBytes) + " bytes");
    }
    const dom::element root = parseValue(json, values);
    dom::object object;
    if (root.get(object) != simdjson::SUCCESS) {
        refuse("not a JSON object");
    }
    checkShape(root, 1);
    return object;
}

} // namespace

Where Where::parse(std::string_view json)
{
    const auto values = std::make_shared<dom::document>();
    const dom::object object = parseObject(json, *values);
    Where where;
    where.m_values = values;
    for (const dom::key_value_pair& member : object) {
        if (isOperator(member.key)) {
            refuse("unknown operator " + quotedText(member.key));
        }
        PathConditions(member.key, where.m_conditions).read(member.value);
    }
    return where;
}

Where Where::equals(std::string_view path, std::string_view text)
{
    // An operand is a JSON value, and those come from a parser.
    std::string json;
    appendJsonString(json, text);
    const auto values = std::make_shared<dom::document>();
    Where where;
    where.m_values = values;
    PathConditions(path, where.m_conditions).read(parseValue(json, *values));
    return where;
}

} // namespace monitorservice
