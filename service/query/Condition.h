#pragma once

#include "time/Timestamp.h"

#include <simdjson.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

class Pattern;

enum class Operator
{
    Equal,
    NotEqual,
    In,
    NotIn,
    GreaterOrEqual,
    Greater,
    LessOrEqual,
    Less,
    Exists,
    Regex,
};

/// A value to compare with. The element lives as long as the Where that it came from.
struct Operand
{
    simdjson::dom::element value;

    /// Set when the value is a text that is a full timestamp.
    std::optional<Timestamp> instant;
};

/// One operator on one path.
struct Condition
{
    std::string path;

    /// The path cut at its dots.
    std::vector<std::string> names;

    Operator operation = Operator::Equal;

    /// One operand; for In and NotIn any number, sorted for look-up; for Regex none.
    std::vector<Operand> operands;

    /// Set for Regex.
    std::shared_ptr<const Pattern> pattern;
};

} // namespace monitorservice
