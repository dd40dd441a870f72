#pragma once

#include "store/segments/ByteReader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace monitorservice {

/// Appends the bits of doubles as what differs from those of the one before, the way of T. Pelkonen et al.,
/// "Gorilla: A Fast, Scalable, In-Memory Time Series Database", Proceedings of the VLDB Endowment 8 (2015).
void appendXored(std::string& out, const std::vector<std::uint64_t>& doubles);

/// So many doubles as appendXored() wrote them. Throws SegmentError.
std::vector<std::uint64_t> readXored(ByteReader& bytes, std::size_t count);

} // namespace monitorservice
