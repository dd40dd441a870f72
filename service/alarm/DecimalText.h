#pragma once

#include <string>

namespace monitorservice {

/// The finite number with at most 12 significant digits, without an exponent: what a difference of binary
/// numbers has behind them is no measurement (0.9 - 1.5 is "-0.6").
std::string decimalText(double value);

/// The number that this text is.
double rounded(double value);

} // namespace monitorservice
