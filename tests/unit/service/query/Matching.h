#pragma once

#include "query/Matcher.h"

namespace monitorservice {

/// Whether one document matches; it has the steps of a whole query.
inline bool matches(const Where& where, simdjson::dom::element document)
{
    return Matcher(where).matches(document);
}

} // namespace monitorservice
