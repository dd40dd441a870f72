#include "domain/SampleText.h"

#include "domain/Document.h"
#include "json/JsonText.h"
#include "time/Timestamp.h"

#include <simdjson.h>

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

std::vector<Sample> samplesIn(std::string_view array)
{
    std::vector<Sample> samples;
    simdjson::dom::parser parser;
    try {
        for (const simdjson::dom::element object : parser.parse(array.data(), array.size())) {
            const std::optional<Timestamp> time = parseTimestamp(object["time"].get_string().value());
            if (!time) {
                throw DamagedDocument("a stored sample is damaged: \"time\" is no time");
            }
            Sample& sample = samples.emplace_back();
            sample.time = time->milliseconds;
            sample.count = static_cast<std::int32_t>(object["count"].get_int64().value());
            sample.offsetMinutes = time->offsetMinutes;
            sample.value = object["value"].get_double().value();
            sample.timeFlag = object["timeFlag"].get_string().value();
        }
    } catch (const simdjson::simdjson_error& error) {
        throw DamagedDocument(std::string("a stored sample is damaged: ") + error.what());
    }
    return samples;
}

} // namespace monitorservice
