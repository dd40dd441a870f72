#include "query/Values.h"

#include "query/AnyOf.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace monitorservice {

namespace dom = simdjson::dom;

namespace {

template <typename Number>
int compareSame(Number left, Number right)
{
    return left < right ? -1 : (right < left ? 1 : 0);
}

// Exact, where converting the integer to double would round it.
template <typename Integer>
int compareWithDouble(Integer left, double right)
{
    // Both powers of two are exact doubles; within them the double's whole part fits the integer.
    constexpr double twoTo63 = 9223372036854775808.0;
    constexpr bool isSigned = std::is_signed_v<Integer>;
    if (right >= (isSigned ? twoTo63 : 2 * twoTo63)) {
        return -1;
    }
    if (right < (isSigned ? -twoTo63 : 0.0)) {
        return 1;
    }
    const auto whole = static_cast<Integer>(right);
    if (left != whole) {
        return left < whole ? -1 : 1;
    }
    return compareSame(0.0, right - static_cast<double>(whole));
}

int compareNumbers(dom::element left, dom::element right)
{
    const auto withDouble = [](dom::element integer, double number) {
        return integer.is_int64() ? compareWithDouble(integer.get_int64().value_unsafe(), number)
                                  : compareWithDouble(integer.get_uint64().value_unsafe(), number);
    };
    const bool leftIsDouble = left.type() == dom::element_type::DOUBLE;
    const bool rightIsDouble = right.type() == dom::element_type::DOUBLE;
    if (leftIsDouble && rightIsDouble) {
        return compareSame(left.get_double().value_unsafe(), right.get_double().value_unsafe());
    }
    if (leftIsDouble) {
        return -withDouble(right, left.get_double().value_unsafe());
    }
    if (rightIsDouble) {
        return withDouble(left, right.get_double().value_unsafe());
    }
    if (left.is_int64() && right.is_int64()) {
        return compareSame(left.get_int64().value_unsafe(), right.get_int64().value_unsafe());
    }
    // An integer that does not fit int64 is above every one that does.
    if (left.is_int64() || right.is_int64()) {
        return left.is_int64() ? -1 : 1;
    }
    return compareSame(left.get_uint64().value_unsafe(), right.get_uint64().value_unsafe());
}

std::string_view text(const Operand& operand)
{
    return operand.value.get_string().value_unsafe();
}

int compareTexts(const Operand& left, const Operand& right)
{
    if (left.instant && right.instant) {
        return compare(*left.instant, *right.instant);
    }
    // UTF-8 bytes, compared unsigned, order as code points.
    return text(left).compare(text(right));
}

bool equalLists(dom::array wanted, dom::array found)
{
    if (wanted.size() != found.size()) {
        return false;
    }
    dom::array::iterator other = found.begin();
    return !anyOf(wanted, [&other](dom::element value) {
        const bool same = equal(makeOperand(value), makeOperand(*other));
        ++other;
        return !same;
    });
}

bool equalObjects(dom::object wanted, dom::object found)
{
    if (wanted.size() != found.size()) {
        return false;
    }
    return !anyOf(wanted, [&found](const dom::key_value_pair& member) {
        dom::element value;
        return found.at_key(member.key).get(value) != simdjson::SUCCESS ||
               !equal(makeOperand(member.value), makeOperand(value));
    });
}

// The kinds that sortForLookup() separates; within all but the last, values have one order.
enum class LookupKind
{
    Instant,
    Text,
    Number,
    Other
};

LookupKind lookupKind(const Operand& operand)
{
    if (operand.instant) {
        return LookupKind::Instant;
    }
    if (operand.value.is_string()) {
        return LookupKind::Text;
    }
    return operand.value.is_number() ? LookupKind::Number : LookupKind::Other;
}

bool isBefore(const Operand& left, const Operand& right)
{
    const LookupKind leftKind = lookupKind(left);
    const LookupKind rightKind = lookupKind(right);
    if (leftKind != rightKind) {
        return leftKind < rightKind;
    }
    return leftKind != LookupKind::Other && order(left, right).value_or(0) < 0;
}

} // namespace

Operand makeOperand(dom::element value)
{
    Operand operand{value, std::nullopt};
    if (value.is_string()) {
        operand.instant = parseTimestamp(text(operand));
    }
    return operand;
}

bool equal(const Operand& wanted, const Operand& found)
{
    if (wanted.value.is_array() && found.value.is_array()) {
        return equalLists(wanted.value.get_array().value_unsafe(), found.value.get_array().value_unsafe());
    }
    if (wanted.value.is_object() && found.value.is_object()) {
        return equalObjects(wanted.value.get_object().value_unsafe(),
                            found.value.get_object().value_unsafe());
    }
    if (wanted.value.is_null()) {
        return found.value.is_null();
    }
    return order(wanted, found) == 0;
}

std::optional<int> order(const Operand& left, const Operand& right)
{
    if (left.value.is_number() && right.value.is_number()) {
        return compareNumbers(left.value, right.value);
    }
    if (left.value.is_string() && right.value.is_string()) {
        return compareTexts(left, right);
    }
    if (left.value.is_bool() && right.value.is_bool()) {
        return compareSame(left.value.get_bool().value_unsafe(), right.value.get_bool().value_unsafe());
    }
    return std::nullopt;
}

void sortForLookup(std::vector<Operand>& values)
{
    std::sort(values.begin(), values.end(), isBefore);
}

bool contains(const std::vector<Operand>& values, const Operand& found)
{
    const auto [begin, end] = std::equal_range(values.begin(), values.end(), found, isBefore);
    return std::any_of(begin, end, [&found](const Operand& wanted) { return equal(wanted, found); });
}

} // namespace monitorservice
