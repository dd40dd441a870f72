#include "StandardRecords.h"

#include <nlohmann/json.hpp>
#include <simdjson.h>

#include <charconv>

namespace {

template <typename Number>
bool take(std::string_view text, std::size_t at, std::size_t size, Number& number)
{
    const char* first = text.data() + at;
    return std::from_chars(first, first + size, number).ptr == first + size;
}

// Days since 1970-01-01 in the proleptic Gregorian calendar.
std::int64_t daysOf(int year, int month, int day)
{
    const int shifted = month <= 2 ? year - 1 : year;
    const int era = shifted / 400;
    const int yearOfEra = shifted - era * 400;
    const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return static_cast<std::int64_t>(era) * 146097 + dayOfEra - 719468;
}

std::string textOf(const nlohmann::json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

template <typename Number>
Number numberOf(const nlohmann::json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_number() ? found->get<Number>() : Number();
}

std::string textOf(simdjson::ondemand::value value)
{
    return std::string(std::string_view(value));
}

void readSample(simdjson::ondemand::object object, StandardSample& sample)
{
    for (auto member : object) {
        const std::string_view key = member.unescaped_key();
        if (key == "count") {
            sample.count = static_cast<std::int32_t>(std::int64_t(member.value()));
        } else if (key == "time") {
            sample.time = millisecondsOf(std::string_view(member.value()), &sample.offset);
        } else if (key == "value") {
            sample.value = double(member.value());
        } else if (key == "timeFlag") {
            sample.timeFlag = textOf(simdjson::ondemand::value(member.value()));
        }
    }
}

void readPoint(simdjson::ondemand::object object, StandardPoint& point)
{
    for (auto member : object) {
        const std::string_view key = member.unescaped_key();
        simdjson::ondemand::value value = member.value();
        if (key == "_id") {
            point.id = textOf(value);
        } else if (key == "cellId") {
            point.cellId = textOf(value);
        } else if (key == "name") {
            point.name = textOf(value);
        } else if (key == "category") {
            point.category = textOf(value);
        } else if (key == "dataType") {
            point.dataType = static_cast<std::int32_t>(std::int64_t(value));
        } else if (key == "initialValue") {
            point.initialValue = double(value);
        } else if (key == "offsetDirection") {
            point.offsetDirection = textOf(value);
        } else if (key == "depth") {
            point.depth = textOf(value);
        } else if (key == "insertCount") {
            point.insertCount = static_cast<std::int32_t>(std::int64_t(value));
        } else if (key == "lastCount") {
            point.lastCount = static_cast<std::int32_t>(std::int64_t(value));
        } else if (key == "lastDate") {
            point.lastDate = millisecondsOf(std::string_view(value));
        } else if (key == "createdAt") {
            point.createdAt = millisecondsOf(std::string_view(value));
        } else if (key == "createdBy") {
            point.createdBy = textOf(value);
        } else if (key == "updatedAt") {
            point.updatedAt = millisecondsOf(std::string_view(value));
        } else if (key == "updatedBy") {
            point.updatedBy = textOf(value);
        } else if (key == "data") {
            for (auto sample : value.get_array()) {
                readSample(sample, point.data.emplace_back());
            }
        } else if (key == "entity") {
            for (simdjson::ondemand::object link : value.get_array()) {
                std::vector<std::string>& identifiers =
                    point.links[std::string(std::string_view(link["type"]))];
                identifiers.emplace_back(std::string_view(link["rId"]));
            }
        }
    }
}

} // namespace

std::int64_t millisecondsOf(std::string_view text, int* offset)
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    if (text.size() < 24 || !take(text, 0, 4, year) || !take(text, 5, 2, month) || !take(text, 8, 2, day) ||
        !take(text, 11, 2, hour) || !take(text, 14, 2, minute) || !take(text, 17, 2, second) ||
        !take(text, 20, 3, millisecond)) {
        return 0;
    }
    int minutes = 0;
    if (text[23] != 'Z') {
        int hours = 0;
        if (text.size() != 29 || !take(text, 24, 2, hours) || !take(text, 27, 2, minutes)) {
            return 0;
        }
        minutes = (text[23] == '-' ? -1 : 1) * (hours * 60 + minutes);
    }
    if (offset) {
        *offset = minutes;
    }
    return ((daysOf(year, month, day) * 24 + hour) * 60 + minute - minutes) * 60'000 + second * 1000 +
           millisecond;
}

StandardPoints pointsByNlohmann(const std::string& body)
{
    const nlohmann::json document = nlohmann::json::parse(body);
    StandardPoints points;
    points.reserve(document.size());
    for (const nlohmann::json& object : document) {
        StandardPoint& point = points.emplace_back();
        point.id = textOf(object, "_id");
        point.cellId = textOf(object, "cellId");
        point.name = textOf(object, "name");
        point.category = textOf(object, "category");
        point.dataType = numberOf<std::int32_t>(object, "dataType");
        point.initialValue = numberOf<double>(object, "initialValue");
        point.offsetDirection = textOf(object, "offsetDirection");
        point.depth = textOf(object, "depth");
        point.insertCount = numberOf<std::int32_t>(object, "insertCount");
        point.lastCount = numberOf<std::int32_t>(object, "lastCount");
        point.lastDate = millisecondsOf(textOf(object, "lastDate"));
        point.createdAt = millisecondsOf(textOf(object, "createdAt"));
        point.createdBy = textOf(object, "createdBy");
        point.updatedAt = millisecondsOf(textOf(object, "updatedAt"));
        point.updatedBy = textOf(object, "updatedBy");
        const nlohmann::json& samples = object.at("data");
        point.data.reserve(samples.size());
        for (const nlohmann::json& element : samples) {
            StandardSample& sample = point.data.emplace_back();
            sample.count = numberOf<std::int32_t>(element, "count");
            sample.time = millisecondsOf(textOf(element, "time"), &sample.offset);
            sample.value = numberOf<double>(element, "value");
            sample.timeFlag = textOf(element, "timeFlag");
        }
        for (const nlohmann::json& link : object.at("entity")) {
            point.links[textOf(link, "type")].push_back(textOf(link, "rId"));
        }
    }
    return points;
}

StandardPoints pointsBySimdjson(const std::string& body)
{
    simdjson::ondemand::parser parser;
    const simdjson::padded_string padded(body);
    simdjson::ondemand::document document = parser.iterate(padded);
    StandardPoints points;
    for (simdjson::ondemand::object object : document.get_array()) {
        readPoint(object, points.emplace_back());
    }
    return points;
}
