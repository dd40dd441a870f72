#include "query/Matcher.h"

#include "query/AnyOf.h"
#include "query/PathReach.h"
#include "query/Values.h"

#include <algorithm>

namespace monitorservice {

namespace dom = simdjson::dom;

namespace {

// Whether `accepts` holds for a value that the condition's path reaches, or for a member of a list that it
// reaches.
template <typename Accepts>
bool anyReached(const Condition& condition, dom::element document, Accepts accepts)
{
    const auto acceptsOrHolds = [&accepts](dom::element value) {
        if (accepts(value)) {
            return true;
        }
        dom::array members;
        return value.get(members) == simdjson::SUCCESS && anyOf(members, accepts);
    };
    return reach(document, condition.names, acceptsOrHolds).accepted;
}

bool isOneOf(const Condition& condition, dom::element document)
{
    const auto accepts = [&condition](dom::element value) {
        return contains(condition.operands, makeOperand(value));
    };
    if (anyReached(condition, document, accepts)) {
        return true;
    }
    const bool wantsNull = std::any_of(condition.operands.begin(), condition.operands.end(),
                                       [](const Operand& operand) { return operand.value.is_null(); });
    return wantsNull && reach(document, condition.names, [](dom::element) { return false; }).missing;
}

bool exists(const Condition& condition, dom::element document)
{
    return reach(document, condition.names, [](dom::element) { return true; }).accepted;
}

bool isInOrder(const Condition& condition, dom::element document)
{
    const Operand& operand = condition.operands.front();
    return anyReached(condition, document, [&condition, &operand](dom::element value) {
        const std::optional<int> position = order(makeOperand(value), operand);
        if (!position) {
            return false;
        }
        switch (condition.operation) {
        case Operator::GreaterOrEqual:
            return *position >= 0;
        case Operator::Greater:
            return *position > 0;
        case Operator::LessOrEqual:
            return *position <= 0;
        default:
            return *position < 0;
        }
    });
}

bool holds(const Condition& condition, dom::element document, PatternSearch& search)
{
    switch (condition.operation) {
    case Operator::Equal:
    case Operator::In:
        return isOneOf(condition, document);
    case Operator::NotEqual:
    case Operator::NotIn:
        return !isOneOf(condition, document);
    case Operator::Exists:
        return exists(condition, document) == condition.operands.front().value.get_bool().value_unsafe();
    case Operator::Regex:
        return anyReached(condition, document, [&condition, &search](dom::element value) {
            std::string_view subject;
            return value.get(subject) == simdjson::SUCCESS && search.finds(*condition.pattern, subject);
        });
    default:
        return isInOrder(condition, document);
    }
}

} // namespace

Matcher::Matcher(Where where, std::uint64_t stepBudget) : m_where(std::move(where)), m_search(stepBudget) {}

bool Matcher::matches(dom::element document)
{
    const std::vector<Condition>& conditions = m_where.conditions();
    return std::all_of(conditions.begin(), conditions.end(), [this, document](const Condition& condition) {
        return holds(condition, document, m_search);
    });
}

} // namespace monitorservice
