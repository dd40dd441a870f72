#include "query/QuotedText.h"

#include <cstddef>

namespace monitorservice {

std::string shortened(std::string_view text)
{
    constexpr std::size_t longest = 100;
    if (text.size() <= longest) {
        return std::string(text);
    }
    std::size_t end = longest;
    const auto continuesCharacter = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
    };
    while (end > 0 && continuesCharacter(text[end])) {
        --end;
    }
    return std::string(text.substr(0, end)) + "…";
}

std::string quotedText(std::string_view text)
{
    return '"' + shortened(text) + '"';
}

} // namespace monitorservice
