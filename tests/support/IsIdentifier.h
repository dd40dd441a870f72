#pragma once

#include "domain/Identifier.h"

#include <algorithm>
#include <string_view>

namespace monitorservice::test {

/// Whether the text has the form of an identifier of the service.
inline bool isIdentifier(std::string_view text)
{
    return text.size() == identifierLength && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

} // namespace monitorservice::test
