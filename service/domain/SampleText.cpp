#include "domain/SampleText.h"

#include "json/JsonText.h"

namespace monitorservice {

void appendSample(std::string& out, const Sample& sample)
{
    out += "{\"count\":";
    appendJsonInteger(out, sample.count);
    out += ",\"time\":\"";
    appendIsoText(out, sample.time, sample.offsetMinutes);
    out += "\",\"value\":";
    appendJsonNumber(out, sample.value);
    out += ",\"timeFlag\":";
    appendJsonString(out, sample.timeFlag);
    out += '}';
}

} // namespace monitorservice
