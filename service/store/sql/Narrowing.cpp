#include "store/sql/Narrowing.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace monitorservice {

namespace {

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

// Whether a column can hold the text at all.
bool canHold(std::string_view text, const Dialect& dialect)
{
    return dialect.textsHoldNul || text.find('\0') == std::string_view::npos;
}

ColumnValues columnValues(const NarrowableField& field, const std::vector<Operand>& operands,
                          const Dialect& dialect)
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
        } else if (field.kind != FieldKind::Time && operand.value.is_string() &&
                   canHold(operand.value.get_string().value_unsafe(), dialect)) {
            result.values.emplace_back(std::string(operand.value.get_string().value_unsafe()));
        }
        // What remains equals nothing that the column holds.
    }
    return result;
}

// Narrows by one condition on one field.
class FieldNarrowing
{
public:
    FieldNarrowing(const NarrowableField& field, const Condition& condition, const Dialect& dialect)
        : m_field(field), m_condition(condition), m_dialect(dialect)
    {
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
            if (m_field.kind == FieldKind::Text) {
                m_result.patterns.push_back({m_field.column, m_condition.pattern});
            }
            break;
        default:
            narrowRange();
        }
        return m_result;
    }

private:
    Sql isNull() const { return m_field.column + " IS NULL"; }
    Sql isNotNull() const { return m_field.column + " IS NOT NULL"; }

    void narrowIsOneOf()
    {
        const ColumnValues wanted = columnValues(m_field, m_condition.operands, m_dialect);
        m_result.exact = !wanted.rounded && !wanted.unknown;
        if (wanted.unknown) {
            return;
        }
        const Sql isWanted = Sql::isOneOf(m_field.column, wanted.values);
        if (!wanted.null) {
            m_result.condition = isWanted;
        } else if (wanted.values.empty()) {
            m_result.condition = isNull();
        } else {
            m_result.condition = Sql("(").append(isWanted).append(" OR ").append(isNull()).append(")");
        }
    }

    void narrowIsNoneOf()
    {
        ColumnValues unwanted = columnValues(m_field, m_condition.operands, m_dialect);
        m_result.exact = !unwanted.rounded && !unwanted.unknown;
        // Rows that only may be unwanted must stay.
        if (!m_result.exact) {
            unwanted.values.clear();
        }
        if (unwanted.values.empty()) {
            if (unwanted.null) {
                m_result.condition = isNotNull();
            }
            return;
        }
        const Sql isWanted = Sql::isOneOf(m_field.column + " NOT", unwanted.values);
        m_result.condition =
            unwanted.null ? isWanted : Sql("(").append(isWanted).append(" OR ").append(isNull()).append(")");
    }

    void narrowExists()
    {
        // A column cannot tell null, which exists, from missing.
        m_result.exact = false;
        const bool wanted = m_condition.operands.front().value.get_bool().value_unsafe();
        if (!wanted) {
            m_result.condition = isNull();
        }
    }

    void narrowRange()
    {
        const Operand& bound = m_condition.operands.front();
        if (!bound.value.is_string()) {
            m_result.condition = "FALSE";
            return;
        }
        const bool comparable = bound.instant.has_value() == (m_field.kind == FieldKind::Time);
        if (!comparable) {
            m_result.exact = false;
        } else if (bound.instant) {
            narrowTimeRange(*bound.instant);
        } else {
            narrowTextRange(bound.value.get_string().value_unsafe());
        }
    }

    // Of the texts that a column can hold, those below "a\0b" are the ones up to "a".
    void narrowTextRange(std::string_view bound)
    {
        Operator operation = m_condition.operation;
        if (!canHold(bound, m_dialect)) {
            bound = bound.substr(0, bound.find('\0'));
            const bool isUpperBound = operation == Operator::Less || operation == Operator::LessOrEqual;
            operation = isUpperBound ? Operator::LessOrEqual : Operator::Greater;
        }
        setRange(operation, std::string(bound));
    }

    // The column is rounded towards the past, so "from a whole millisecond" and "before a whole millisecond"
    // are exact, and everything else must take in the millisecond of the bound.
    void narrowTimeRange(const Timestamp& bound)
    {
        const bool wholeMilliseconds = bound.finerDigits.empty();
        if (m_condition.operation == Operator::GreaterOrEqual || m_condition.operation == Operator::Greater) {
            m_result.exact = wholeMilliseconds && m_condition.operation == Operator::GreaterOrEqual;
            setRange(Operator::GreaterOrEqual, bound.milliseconds);
            return;
        }
        m_result.exact = wholeMilliseconds && m_condition.operation == Operator::Less;
        setRange(m_result.exact ? Operator::Less : Operator::LessOrEqual, bound.milliseconds);
    }

    void setRange(Operator operation, SqlValue bound)
    {
        const bool isUpperBound = operation == Operator::Less || operation == Operator::LessOrEqual;
        const bool inclusive = operation == Operator::LessOrEqual || operation == Operator::GreaterOrEqual;
        m_result.condition = m_field.column;
        if (m_field.kind == FieldKind::Text) {
            m_result.condition.append(m_dialect.binaryCollation);
        }
        m_result.condition.append(isUpperBound ? " <" : " >")
            .append(inclusive ? "= " : " ")
            .appendValue(std::move(bound));
    }

    const NarrowableField& m_field;
    const Condition& m_condition;
    const Dialect& m_dialect;
    Narrowing m_result;
};

Narrowing narrow(const Condition& condition, const std::vector<NarrowableField>& fields,
                 const Dialect& dialect)
{
    if (condition.operation == Operator::In && condition.operands.empty()) {
        return {"FALSE", true, {}};
    }
    const auto field =
        std::find_if(fields.begin(), fields.end(), [&condition](const NarrowableField& candidate) {
            return candidate.path == condition.path;
        });
    if (field == fields.end()) {
        return {"TRUE", false, {}};
    }
    return FieldNarrowing(*field, condition, dialect).narrow();
}

} // namespace

Narrowing narrow(const Where& where, const std::vector<NarrowableField>& fields, const Dialect& dialect)
{
    const Sql always = "TRUE";
    Narrowing result;
    bool othersAreLeft = false;
    for (const Condition& condition : where.conditions()) {
        Narrowing part = narrow(condition, fields, dialect);
        result.exact = result.exact && part.exact;
        othersAreLeft = othersAreLeft || (!part.exact && part.patterns.empty());
        std::move(part.patterns.begin(), part.patterns.end(), std::back_inserter(result.patterns));
        if (part.condition == always) {
            continue;
        }
        result.condition =
            result.condition == always ? part.condition : result.condition.andAlso(part.condition);
    }
    if (othersAreLeft) {
        result.patterns.clear();
    }
    return result;
}

} // namespace monitorservice
