#pragma once

#include <stdexcept>

namespace monitorservice {

/// What is not a segment, is damaged, or is of a later version. Its message says what is wrong.
class SegmentError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace monitorservice
