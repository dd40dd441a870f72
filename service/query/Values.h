#pragma once

#include "query/Condition.h"

#include <simdjson.h>

#include <optional>
#include <vector>

namespace monitorservice {

/// A value with what comparing needs to know of it.
Operand makeOperand(simdjson::dom::element value);

/// Whether two values are the same: numbers by value, texts by code points or as instants, lists member by
/// member, objects by members in any order. Recurses no deeper than `wanted` nests.
bool equal(const Operand& wanted, const Operand& found);

/// Negative, 0 or positive as `left` stands before, with or after `right`; nullopt when the two are not of
/// one type that has an order: numbers, texts, truth values.
std::optional<int> order(const Operand& left, const Operand& right);

/// Sorts values for contains().
void sortForLookup(std::vector<Operand>& values);

/// Whether one of the sorted `values` equals `found`.
bool contains(const std::vector<Operand>& values, const Operand& found);

} // namespace monitorservice
