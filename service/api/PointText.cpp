#include "api/PointText.h"

#include "api/ApiError.h"
#include "store/SampleText.h"
#include "json/JsonText.h"

namespace monitorservice {

namespace {

// As much as the client library takes in one answer.
constexpr std::size_t largestAnswer = std::size_t{256} * 1024 * 1024;

void requireRoom(const std::string& out)
{
    if (out.size() > largestAnswer) {
        throw ApiError(400,
                       "the answer would be larger than " + std::to_string(largestAnswer) +
                           " bytes; ask for fewer points with \"limit\" and \"skip\", or for fewer samples "
                           "with a condition on \"time\"");
    }
}

} // namespace

void appendPoint(std::string& out, PointSelection& selection, const FoundPoint& point)
{
    out += point.document.substr(0, point.document.rfind('}'));
    out += ",\"category\":";
    appendJsonString(out, point.category);
    out += ",\"entity\":";
    out += point.links;
    out += ",\"data\":[";
    bool first = true;
    selection.visitSamples(point.key, [&out, &first](const Sample& sample) {
        out += first ? "" : ",";
        first = false;
        appendSample(out, sample);
        requireRoom(out);
    });
    out += "]}";
}

} // namespace monitorservice
