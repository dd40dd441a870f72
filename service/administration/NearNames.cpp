#include "administration/NearNames.h"

#include "query/Pattern.h"
#include "query/PatternSearch.h"

#include <algorithm>
#include <cctype>

namespace monitorservice {

namespace {

// The text as a pattern that stands for itself.
std::string literal(const std::string& text)
{
    std::string pattern;
    for (const char byte : text) {
        if (std::ispunct(static_cast<unsigned char>(byte)) != 0) {
            pattern += '\\';
        }
        pattern += byte;
    }
    return pattern;
}

std::size_t charactersIn(const std::string& text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
    }));
}

} // namespace

bool differInCaseOnly(const std::string& one, const std::string& other)
{
    if (one == other || charactersIn(one) != charactersIn(other)) {
        return false;
    }
    const Pattern pattern("\\A" + literal(one) + "\\z", "i", "name");
    return PatternSearch().finds(pattern, other);
}

} // namespace monitorservice
