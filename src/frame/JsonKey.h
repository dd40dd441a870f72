#pragma once

#include <QLatin1String>

namespace rk {

/// A JSON key as a constant: reading a member by it builds no temporary string.
template <int size>
constexpr QLatin1String jsonKey(const char (&text)[size])
{
    return QLatin1String(text, size - 1);
}

} // namespace rk
