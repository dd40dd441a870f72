// Random points, samples and conditions: what the service answers must be what the matcher alone gives when
// it is asked of every point and every sample.

#include "MeasuredFixture.h"
#include "query/Matcher.h"
#include "query/Where.h"
#include "support/Chance.h"

#include <set>

namespace monitorservice {
namespace {

using test::Chance;

const std::vector<std::string> names{"S1", "S2", "S10", "s1", "Wall", "2015-12-20T06:00:00Z"};
const std::vector<std::string> depths{"", "2.5", "10", "0.5"};
const std::vector<std::string> flags{"A", "B", "", "2015-12-20T06:00:00Z"};
const std::vector<std::string> identifiers{"m1", "m2", "s1"};
const std::vector<std::string> times{
    "2015-12-20T05:59:59.999Z",  "2015-12-20T06:00:00.000Z",      "2015-12-20T07:00:00.000+01:00",
    "2015-12-20T22:59:59.999Z",  "2015-12-20T23:00:00.000Z",      "2015-12-21T00:30:00.000+01:00",
    "2015-12-21T06:00:00.000Z",  "2015-12-22T06:00:00.000-05:00", "2015-12-24T06:00:00.001Z",
    "2015-12-24T06:00:00.0005Z", "2015-12-23T06:00:00Z"};

std::string jsonText(const std::string& text)
{
    std::string json;
    appendJsonString(json, text);
    return json;
}

std::string anyOperator(Chance& chance, const std::vector<std::string>& values, const std::string& pattern)
{
    const std::string value = jsonText(chance.of(values));
    const std::string other = jsonText(chance.of(values));
    switch (chance.below(10)) {
    case 0:
        return value;
    case 1:
        return R"({"$ne":)" + value + "}";
    case 2:
        return R"({"$in":[)" + value + "," + other + "]}";
    case 3:
        return R"({"$nin":[)" + value + ",null]}";
    case 4:
        return R"({"$gte":)" + value + R"(,"$lt":)" + other + "}";
    case 5:
        return R"({"$gt":)" + value + "}";
    case 6:
        return R"({"$lte":)" + value + "}";
    case 7:
        return R"({"$regex":)" + jsonText(pattern) + R"(,"$options":"i"})";
    case 8:
        return R"({"$exists":)" + std::string(chance.below(2) == 0 ? "true" : "false") + "}";
    default:
        return R"({"$gte":)" + std::min(value, other) + R"(,"$lt":)" + std::max(value, other) + "}";
    }
}

std::string anyWhere(Chance& chance)
{
    std::map<std::string, std::string> conditions;
    for (std::size_t i = chance.below(4); i > 0; --i) {
        switch (chance.below(9)) {
        case 0:
        case 1:
        case 2:
            conditions["time"] = anyOperator(chance, times, "T06.*z$");
            break;
        case 3:
            conditions["data.timeFlag"] = anyOperator(chance, flags, "^a");
            break;
        case 4:
            conditions["name"] = anyOperator(chance, names, "s1");
            break;
        case 5:
            conditions["category"] = anyOperator(chance, {"Settlement", "Inclinometer"}, "^inc");
            break;
        case 6:
            conditions["uuid"] = anyOperator(chance, identifiers, "^M");
            break;
        case 7:
            conditions["depth"] = anyOperator(chance, depths, "5$");
            break;
        default:
            conditions[chance.below(2) == 0 ? "data.value" : "data.time"] =
                chance.below(2) == 0 ? R"({"$gte":2})" : anyOperator(chance, times, "0z$");
        }
    }
    std::string json = "{";
    for (const auto& [path, condition] : conditions) {
        json += (json.size() > 1 ? "," : "") + jsonText(path) + ":" + condition;
    }
    return json + "}";
}

// The conditions on samples and those on points, found anew: the former name "time" or "data.timeFlag".
struct Parts
{
    Where ofSamples;
    Where ofPoints;
};

Parts partsOf(const std::string& json)
{
    std::string samples = "{";
    std::string points = "{";
    simdjson::dom::parser parser;
    const simdjson::dom::object object = parser.parse(json);
    for (const auto condition : object) {
        const bool ofSamples = condition.key == "time" || condition.key == "data.timeFlag";
        std::string& part = ofSamples ? samples : points;
        part += (part.size() > 1 ? "," : "") + jsonText(std::string(condition.key)) + ":" +
                simdjson::minify(condition.value);
    }
    return {Where::parse(samples + "}"), Where::parse(points + "}")};
}

class PointSelectionAgreement : public test::MeasuredFixture
{
protected:
    struct Point
    {
        std::string document; // as conditions see it
        std::vector<test::Reading> readings;
        std::string id;
        std::string name;
    };

    void fill(Chance& chance)
    {
        std::set<std::string> taken;
        write([&](Session& session) {
            while (points.size() < 40) {
                const bool isWall = chance.below(3) == 0;
                test::NewPoint point{isWall ? wall : tower, isWall ? "casing" : "ground", chance.of(names),
                                     chance.of(depths) +
                                         (points.size() % 4 == 0 ? std::to_string(points.size()) : "")};
                if (taken.insert(point.cell + point.name + "/" + point.depth).second) {
                    addTo(session, chance, point);
                }
            }
        });
    }

    void addTo(Session& session, Chance& chance, test::NewPoint& point)
    {
        std::string uuids;
        std::string links;
        for (std::size_t i = chance.below(3); i > 0; --i) {
            const std::string identifier = chance.of(identifiers);
            uuids += (uuids.empty() ? "" : ",") + jsonText(identifier);
            links += links.empty() ? "" : ",";
            links += R"({"type":"model","rId":)" + jsonText(identifier) + "}";
        }
        point.links = "[" + links + "]";
        std::string data;
        for (std::size_t i = 0; i < times.size(); ++i) {
            // The first and the second way to write one instant are one sample, so only one of them.
            if (i == 2 || i > 8 || chance.below(2) == 0) {
                continue;
            }
            point.readings.push_back({times[i], static_cast<double>(chance.below(4)), chance.of(flags)});
            const test::Reading& reading = point.readings.back();
            data += (data.empty() ? "" : ",") + sampleText(reading);
        }
        const std::string id = insertPoint(session, point);
        std::string document = R"({"name":)" + jsonText(point.name) + R"(,"depth":)" + jsonText(point.depth) +
                               R"(,"category":)" +
                               (point.cell == wall ? R"("Inclinometer")" : R"("Settlement")") +
                               R"(,"data":[)" + data + "]";
        document += uuids.empty() ? "}" : R"(,"uuid":[)" + uuids + "]}";
        points.push_back({document, point.readings, id, point.name});
    }

    static std::string sampleText(const test::Reading& reading)
    {
        return R"({"count":1,"time":)" + jsonText(reading.time) + R"(,"value":)" +
               std::to_string(static_cast<int>(reading.value)) + R"(,"timeFlag":)" + jsonText(reading.flag) +
               "}";
    }

    // For each point that matches its identifier and its samples, as the service writes them.
    std::map<std::string, std::string> expected(const std::string& json) const
    {
        const Parts parts = partsOf(json);
        std::map<std::string, std::string> answer;
        simdjson::dom::parser parser;
        for (const Point& point : points) {
            if (!Matcher(parts.ofPoints).matches(parser.parse(point.document))) {
                continue;
            }
            std::string data;
            for (const test::Reading& reading : point.readings) {
                const std::string sample = R"({"time":)" + jsonText(reading.time) +
                                           R"(,"data":{"timeFlag":)" + jsonText(reading.flag) + "}}";
                if (Matcher(parts.ofSamples).matches(parser.parse(sample))) {
                    data += (data.empty() ? "" : ",") + sampleText(reading);
                }
            }
            if (parts.ofSamples.isEmpty() || !data.empty()) {
                answer[point.id] = "[" + data + "]";
            }
        }
        return answer;
    }

    static std::map<std::string, std::string> answered(const test::RawAnswer& answer)
    {
        EXPECT_EQ(answer.status, 200U) << answer.body;
        std::map<std::string, std::string> points;
        simdjson::dom::parser parser;
        const simdjson::dom::array array = parser.parse(answer.body);
        for (const simdjson::dom::element point : array) {
            points[std::string(point["_id"].get_string().value())] = simdjson::minify(point["data"].value());
        }
        return points;
    }

    // The days computed from the samples of an answer: of each UTC day and point the last value.
    static std::map<std::string, double> daysOf(const test::RawAnswer& answer)
    {
        std::map<std::string, double> days;
        simdjson::dom::parser parser;
        const simdjson::dom::array array = parser.parse(answer.body);
        for (const simdjson::dom::element point : array) {
            const simdjson::dom::array data = point["data"];
            for (const simdjson::dom::element sample : data) {
                const auto time = parseTimestamp(sample["time"].get_string().value());
                const std::string day = isoText(time->milliseconds).substr(0, 10);
                days[day + " " + std::string(point["_id"].get_string().value())] =
                    sample["value"].get_double().value();
            }
        }
        return days;
    }

    static std::map<std::string, double> statistics(const test::RawAnswer& answer)
    {
        EXPECT_EQ(answer.status, 200U) << answer.body;
        std::map<std::string, double> days;
        simdjson::dom::parser parser;
        const simdjson::dom::array array = parser.parse(answer.body);
        for (const simdjson::dom::element day : array) {
            const simdjson::dom::array data = day["data"];
            for (const simdjson::dom::element value : data) {
                days[std::string(day["time"].get_string().value().substr(0, 10)) + " " +
                     std::string(value["_id"].get_string().value())] = value["value"].get_double().value();
            }
        }
        return days;
    }

    std::vector<Point> points;
};

TEST_F(PointSelectionAgreement, RandomConditionsGiveWhatTheMatcherGives)
{
    Chance chance(20151221);
    fill(chance);
    std::size_t nonEmpty = 0;
    for (int round = 0; round < 400; ++round) {
        const std::string condition = anyWhere(chance);
        const auto wanted = expected(condition);
        const test::RawAnswer answer = where("projects/p1/pointLocations", condition);
        ASSERT_EQ(answered(answer), wanted) << condition;
        ASSERT_EQ(count("projects/p1/pointLocations", condition), std::to_string(wanted.size())) << condition;
        ASSERT_EQ(statistics(where("projects/p1/normal_statistics", condition)), daysOf(answer)) << condition;
        nonEmpty += wanted.empty() ? 0 : 1;
    }
    EXPECT_GT(nonEmpty, 150U);
}

} // namespace
} // namespace monitorservice
