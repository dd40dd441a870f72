#include "api/AnswerSize.h"

#include "api/ApiError.h"

namespace monitorservice {

void requireRoom(std::size_t bytes)
{
    if (bytes > largestAnswer) {
        throw ApiError(413, "the answer would be larger than " + std::to_string(largestAnswer) +
                                " bytes; ask for pages with \"skip\" and \"limit\", or for less with a "
                                "narrower \"where\", of samples with a condition on \"time\"");
    }
}

} // namespace monitorservice
