#pragma once

#include "store/segments/ByteReader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// Appends texts: each that occurs, once, and which of these stand where.
void appendTexts(std::string& out, const std::vector<std::string_view>& texts);

/// Texts that repeat: those that occur, which lie in the bytes that were read, and which of them stands
/// where.
struct TextColumn
{
    std::vector<std::string_view> occurring;
    std::vector<std::uint64_t> indices; ///< into `occurring`

    std::string_view operator[](std::size_t i) const { return occurring[indices[i]]; }
};

/// So many texts as appendTexts() wrote them. Throws SegmentError, also when they are longer than `mostBytes`
/// together.
TextColumn readTexts(ByteReader& bytes, std::size_t count, std::size_t mostBytes);

} // namespace monitorservice
