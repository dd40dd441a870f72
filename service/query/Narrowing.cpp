#include "query/Narrowing.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <stdexcept>

namespace monitorservice {

namespace {

// What a column that is not uniform holds where the document has something unusual. Blobs stand behind all
// numbers and texts in SQLite's order, and equal none of them.
constexpr std::string_view unusual = "x''";

std::string placeholders(std::size_t count)
{
    std::string list;
    for (std::size_t i = 0; i < count; ++i) {
        list += i == 0 ? "?" : ", ?";
    }
    return list;
}

// Operands as the values of a column.
struct ColumnValues
{
    std::vector<SqlValue> values;
    bool null = false;

    // A column value stands for more than the operand.
    bool rounded = false;

    // Texts that are written otherwise may equal an operand: the column cannot tell.
    bool unknown = false;
};

ColumnValues columnValues(const NarrowableField& field, const std::vector<Operand>& operands)
{
    ColumnValues result;
    for (const Operand& operand : operands) {
        if (operand.value.is_null()) {
            result.null = true;
        } else if (field.kind == FieldKind::Time && operand.instant) {
            result.values.emplace_back(operand.instant->milliseconds);
            result.rounded = true;
        } else if (field.kind != FieldKind::Time && operand.instant) {
            result.unknown = true;
        } else if (field.kind != FieldKind::Time && operand.value.is_string()) {
            result.values.emplace_back(std::string(operand.value.get_string().value_unsafe()));
        }
        // What remains equals nothing that the column holds: at most something unusual.
    }
    return result;
}

// Narrows by one condition on one field.
class FieldNarrowing
{
public:
    FieldNarrowing(const NarrowableField& field, const Condition& condition)
        : m_field(field), m_condition(condition)
    {
        m_result.exact = field.uniform && field.kind != FieldKind::TextSet;
    }

    Narrowing narrow()
    {
        switch (m_condition.operation) {
        case Operator::Equal:
        case Operator::In:
            narrowIsOneOf();
            break;
        case Operator::NotEqual:
        case Operator::NotIn:
            narrowIsNoneOf();
            break;
        case Operator::Exists:
            narrowExists();
            break;
        case Operator::Regex:
            m_result.exact = false;
            if (m_field.uniform && m_field.kind == FieldKind::Text) {
                m_result.patterns.push_back({m_field.sql, m_condition.pattern});
            }
            break;
        default:
            narrowRange();
        }
        return m_result;
    }

private:
    void narrowIsOneOf()
    {
        ColumnValues wanted = columnValues(m_field, m_condition.operands);
        m_result.exact = m_result.exact && !wanted.rounded && !wanted.unknown;
        if (wanted.unknown) {
            return;
        }
        if (m_field.kind == FieldKind::TextSet) {
            narrowSet(std::move(wanted));
            return;
        }
        std::string list = placeholders(wanted.values.size());
        if (!m_field.uniform) {
            list += (list.empty() ? "" : ", ") + std::string(unusual);
        }
        std::string sql = list.empty() ? "0" : m_field.sql + " IN (" + list + ")";
        if (wanted.null) {
            sql = list.empty() ? m_field.sql + " IS NULL" : "(" + sql + " OR " + m_field.sql + " IS NULL)";
        }
        set(sql, std::move(wanted.values));
    }

    void narrowSet(ColumnValues wanted)
    {
        const bool onlyTexts = wanted.values.size() == m_condition.operands.size();
        const std::size_t place = m_field.sql.find("{}");
        if (!onlyTexts || place == std::string::npos) {
            return;
        }
        std::string sql = m_field.sql;
        sql.replace(place, 2, placeholders(wanted.values.size()));
        set("(" + sql + ")", std::move(wanted.values));
    }

    void narrowIsNoneOf()
    {
        ColumnValues unwanted = columnValues(m_field, m_condition.operands);
        m_result.exact = m_result.exact && !unwanted.rounded && !unwanted.unknown;
        if (m_field.kind == FieldKind::TextSet) {
            return;
        }
        // Rows that only may be unwanted must stay.
        if (unwanted.rounded || unwanted.unknown) {
            unwanted.values.clear();
        }
        if (unwanted.values.empty()) {
            if (unwanted.null) {
                set(m_field.sql + " IS NOT NULL", {});
            }
            return;
        }
        std::string sql = m_field.sql + " NOT IN (" + placeholders(unwanted.values.size()) + ")";
        if (!unwanted.null) {
            sql = "(" + sql + " OR " + m_field.sql + " IS NULL)";
        }
        set(sql, std::move(unwanted.values));
    }

    void narrowExists()
    {
        // A column cannot tell null, which exists, from missing.
        m_result.exact = false;
        const bool wanted = m_condition.operands.front().value.get_bool().value_unsafe();
        if (!wanted && m_field.kind != FieldKind::TextSet) {
            set(m_field.sql + " IS NULL", {});
        }
    }

    void narrowRange()
    {
        const Operand& bound = m_condition.operands.front();
        if (m_field.kind == FieldKind::TextSet) {
            return;
        }
        if (!bound.value.is_string()) {
            set(m_field.uniform ? "0" : m_field.sql + " = " + std::string(unusual), {});
            return;
        }
        const bool comparable = bound.instant.has_value() == (m_field.kind == FieldKind::Time);
        if (!comparable) {
            m_result.exact = false;
        } else if (bound.instant) {
            narrowTimeRange(*bound.instant);
        } else {
            setRange(m_condition.operation, std::string(bound.value.get_string().value_unsafe()));
        }
    }

    // The column is rounded towards the past, so "from a whole millisecond" and "before a whole millisecond"
    // are exact, and everything else must take in the millisecond of the bound.
    void narrowTimeRange(const Timestamp& bound)
    {
        const bool wholeMilliseconds = bound.finerDigits.empty();
        if (m_condition.operation == Operator::GreaterOrEqual || m_condition.operation == Operator::Greater) {
            m_result.exact =
                m_result.exact && wholeMilliseconds && m_condition.operation == Operator::GreaterOrEqual;
            setRange(Operator::GreaterOrEqual, bound.milliseconds);
            return;
        }
        const bool before = wholeMilliseconds && m_condition.operation == Operator::Less;
        m_result.exact = m_result.exact && before;
        setRange(before ? Operator::Less : Operator::LessOrEqual, bound.milliseconds);
    }

    void setRange(Operator operation, SqlValue bound)
    {
        const bool isUpperBound = operation == Operator::Less || operation == Operator::LessOrEqual;
        const std::string sign = isUpperBound ? "<" : ">";
        const bool inclusive = operation == Operator::LessOrEqual || operation == Operator::GreaterOrEqual;
        std::string sql = m_field.sql + " " + sign + (inclusive ? "= ?" : " ?");
        if (isUpperBound && !m_field.uniform) {
            sql = "(" + sql + " OR " + m_field.sql + " = " + std::string(unusual) + ")";
        }
        set(sql, {std::move(bound)});
    }

    void set(std::string sql, std::vector<SqlValue> values)
    {
        m_result.sql = std::move(sql);
        m_result.values = std::move(values);
    }

    const NarrowableField& m_field;
    const Condition& m_condition;
    Narrowing m_result;
};

Narrowing narrow(const Condition& condition, const std::vector<NarrowableField>& fields)
{
    if (condition.operation == Operator::In && condition.operands.empty()) {
        return {"0", {}, true, {}};
    }
    const auto field =
        std::find_if(fields.begin(), fields.end(), [&condition](const NarrowableField& candidate) {
            return candidate.path == condition.path;
        });
    if (field == fields.end()) {
        return {"1", {}, false, {}};
    }
    return FieldNarrowing(*field, condition).narrow();
}

} // namespace

Narrowing narrow(const Where& where, const std::vector<NarrowableField>& fields)
{
    Narrowing result;
    bool othersAreLeft = false;
    for (const Condition& condition : where.conditions()) {
        Narrowing part = narrow(condition, fields);
        result.exact = result.exact && part.exact;
        othersAreLeft = othersAreLeft || (!part.exact && part.patterns.empty());
        std::move(part.patterns.begin(), part.patterns.end(), std::back_inserter(result.patterns));
        if (part.sql == "1") {
            continue;
        }
        result.sql = result.sql == "1" ? part.sql : result.sql + " AND " + part.sql;
        std::move(part.values.begin(), part.values.end(), std::back_inserter(result.values));
    }
    if (othersAreLeft) {
        result.patterns.clear();
    }
    return result;
}

std::string generatedTextColumn(std::string_view documentColumn, std::string_view member)
{
    if (member.empty() || member.find_first_of("\"'\\") != std::string_view::npos) {
        throw std::invalid_argument("generatedTextColumn: not a plain member name");
    }
    const std::string document(documentColumn);
    const std::string path = "'$.\"" + std::string(member) + "\"'";
    const std::string other(unusual);
    // SQLite cuts a text at U+0000 when it extracts it, so such a text is found by its escape, after escaped
    // backslashes are taken away: they may stand before a plain "u0000".
    const std::string escapes = "replace(" + document + " -> " + path + R"(, '\\', ''))";
    return "CASE coalesce(json_type(" + document + ", " + path +
           "), 'null') WHEN 'null' THEN NULL WHEN 'text' THEN " + "CASE WHEN instr(" + escapes +
           R"(, '\u0000') = 0 THEN )" + document + " ->> " + path + " ELSE " + other + " END ELSE " + other +
           " END";
}

} // namespace monitorservice
