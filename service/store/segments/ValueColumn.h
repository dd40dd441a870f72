#pragma once

#include "store/segments/ByteReader.h"

#include <cstddef>
#include <string>
#include <vector>

namespace monitorservice {

/// Appends values bit for bit: as decimal numbers with a few exceptions, or as what differs from the one
/// before, whichever takes fewer bytes.
void appendValues(std::string& out, const std::vector<double>& values);

/// So many values as appendValues() wrote them. Throws SegmentError.
std::vector<double> readValues(ByteReader& bytes, std::size_t count);

} // namespace monitorservice
