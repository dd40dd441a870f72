#include "api/PointText.h"

#include "api/AnswerSize.h"
#include "domain/Document.h"
#include "domain/SampleText.h"
#include "json/JsonText.h"

namespace monitorservice {

void appendPoint(std::string& out, PointSelection& selection, const FoundPoint& point)
{
    out += openedDocument(point.document);
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
        requireRoom(out.size());
    });
    out += "]}";
    requireRoom(out.size());
}

} // namespace monitorservice
