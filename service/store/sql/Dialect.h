#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace monitorservice {

/// What databases write in different ways. Where two ways are understood by all of them (TRUE and FALSE,
/// LIMIT and OFFSET), the one that all understand is written everywhere instead.
struct Dialect
{
    /// Whether placeholders are numbered from 1, `$1`, rather than each written `?`.
    bool numbersPlaceholders = false;

    /// Written behind a column of texts whose order matters, so that texts are compared byte by byte. Empty
    /// where they are anyway.
    std::string_view binaryCollation = {};

    /// The number that a depth begins with, in a row that has a column of this name; 0 where it begins with
    /// none.
    std::string_view depthAsNumber = "CAST(depth AS REAL)";

    /// Called with a JSON array, gives its texts in rows, in a SELECT.
    std::string_view textsOfJson = "value FROM json_each";

    /// Whether a text may hold U+0000.
    bool textsHoldNul = true;

    /// Whether NULL must be told that it stands before everything else.
    bool placesNullLast = false;

    /// The placeholder of the value at this place, counted from 1.
    std::string placeholder(std::size_t place) const
    {
        return numbersPlaceholders ? "$" + std::to_string(place) : "?";
    }
};

} // namespace monitorservice
