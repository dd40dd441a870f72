#pragma once

#include <string>

namespace monitorservice {

/// The finite number with at most 12 significant digits, without an exponent: what a difference of binary
/// numbers has behind them is no measurement (0.9 - 1.5 is "-0.6").
std::string decimalText(double value);

/// The number that this text is.
double rounded(double value);

/// A difference of numbers as great as `magnitude`, without what stands behind their 12 significant digits:
/// 100000.3 - 100000 is 0.3.
double roundedDifference(double difference, double magnitude);

} // namespace monitorservice
