// Input: the body of a delivery. It is taken whole, each sample as it was sent, or refused with a reason that
// can be sent to the client. What was sent is read a second time by another JSON library.

#include "Fuzzer.h"
#include "delivery/DeliveryParser.h"
#include "delivery/DeliveryRefusal.h"
#include "time/Timestamp.h"

#include <nlohmann/json.hpp>
#include <simdjson.h>

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace monitorservice {
namespace {

using fuzz::require;
using Json = nlohmann::json;

// Nothing when it is refused.
std::optional<Delivery> taken(const std::string& body)
{
    try {
        return parseDelivery(body);
    } catch (const DeliveryRefusal& refusal) {
        const std::string message = refusal.what();
        require(!message.empty() && simdjson::validate_utf8(message), "the refusal can be sent",
                [&] { return message; });
        return std::nullopt;
    }
}

using PointName = std::tuple<std::string, std::string, std::string, std::string>;

PointName nameOf(const DeliveredPoint& point)
{
    return {point.cell, point.subCategory, point.name, point.depth};
}

PointName nameOf(const Json& element)
{
    return {element.at("cellId"), element.at("subCategoryId"), element.at("name"),
            element.value("depth", std::string())};
}

// The sample of the point's delivery that was sent so.
const DeliveredSample* find(const DeliveredPoint& point, const Timestamp& time, std::int64_t count)
{
    const auto found = std::find_if(point.samples.begin(), point.samples.end(), [&](const auto& sample) {
        return sample.time == time.milliseconds && sample.count == count;
    });
    return found == point.samples.end() ? nullptr : &*found;
}

void checkSample(const Delivery& delivery, const DeliveredPoint& point, const Json& sent)
{
    const auto time = parseTimestamp(sent.at("time").get_ref<const std::string&>());
    require(time.has_value(), "a sample that is taken has a time", [&] { return sent.dump(); });
    const DeliveredSample* const sample = find(point, *time, sent.at("count").get<std::int64_t>());
    require(sample != nullptr, "every sample sent is there", [&] { return sent.dump(); });
    require(sample->value == sent.at("value").get<double>(), "it has the value sent",
            [&] { return sent.dump(); });
    require(delivery.timeFlags.at(sample->timeFlag) == sent.value("timeFlag", std::string()),
            "it has the flag sent", [&] { return sent.dump(); });
}

// The elements of a delivery, those of inner arrays too.
std::vector<Json> elementsOf(const Json& body)
{
    std::vector<Json> elements;
    for (const Json& element : body) {
        if (element.is_array()) {
            elements.insert(elements.end(), element.begin(), element.end());
        } else {
            elements.push_back(element);
        }
    }
    return elements;
}

std::size_t rowsOf(const Delivery& delivery)
{
    std::size_t rows = 0;
    for (const DeliveredPoint& point : delivery.points) {
        rows += point.rows;
    }
    return rows;
}

void checkAgainstSent(const Delivery& delivery, const std::string& body)
{
    const Json sent = Json::parse(body, nullptr, false);
    require(sent.is_array(), "what is taken is JSON", [&] { return body; });
    const std::vector<Json> elements = elementsOf(sent);
    require(elements.size() == delivery.elements.size(), "every element is taken");
    std::map<PointName, const DeliveredPoint*> points;
    for (const DeliveredPoint& point : delivery.points) {
        require(points.emplace(nameOf(point), &point).second, "each point is there once");
    }
    std::map<PointName, double> initialValues;
    std::size_t rows = 0;
    for (const Json& element : elements) {
        const auto point = points.find(nameOf(element));
        require(point != points.end(), "every point sent is there", [&] { return element.dump(); });
        if (const double initialValue = element.value("initialValue", 0.0); initialValue != 0.0) {
            initialValues[nameOf(element)] = initialValue;
        }
        for (const Json& sample : element.value("data", Json::array())) {
            checkSample(delivery, *point->second, sample);
            ++rows;
        }
    }
    require(rows == rowsOf(delivery), "every row is counted");
    for (const DeliveredPoint& point : delivery.points) {
        const auto sentValue = initialValues.find(nameOf(point));
        require(point.initialValue.value_or(0.0) ==
                    (sentValue == initialValues.end() ? 0.0 : sentValue->second),
                "a point has the initial value that was sent last");
    }
}

void checkOrder(const Delivery& delivery)
{
    for (const DeliveredPoint& point : delivery.points) {
        const auto notBefore = [](const DeliveredSample& left, const DeliveredSample& right) {
            return std::tie(left.time, left.count) >= std::tie(right.time, right.count);
        };
        require(std::adjacent_find(point.samples.begin(), point.samples.end(), notBefore) ==
                    point.samples.end(),
                "samples are in the order of time and count, each once");
        require(point.samples.size() <= point.rows, "no sample is made up");
    }
}

// The same elements sent twice make the same points with the same samples.
void checkRepeated(const Delivery& delivery, const std::string& body)
{
    const std::size_t begin = body.find('[');
    const std::size_t end = body.rfind(']');
    const std::string inner = body.substr(begin + 1, end - begin - 1);
    const std::optional<Delivery> twice = taken("[" + inner + "," + inner + "]");
    require(twice.has_value(), "what is taken is taken twice", [&] { return body; });
    require(twice->points.size() == delivery.points.size() && rowsOf(*twice) == 2 * rowsOf(delivery),
            "what is given twice makes no point and loses no row");
    for (std::size_t i = 0; i < delivery.points.size(); ++i) {
        const auto& once = delivery.points[i].samples;
        const auto& again = twice->points[i].samples;
        require(std::equal(once.begin(), once.end(), again.begin(), again.end(),
                           [](const DeliveredSample& left, const DeliveredSample& right) {
                               return std::tie(left.time, left.count, left.value, left.timeFlag) ==
                                      std::tie(right.time, right.count, right.value, right.timeFlag);
                           }),
                "samples that come twice are there once");
    }
}

void tryInput(const std::string& body)
{
    constexpr std::size_t longest = 64 * 1024; // twice as much stays below every bound
    if (body.size() > longest) {
        return;
    }
    isNestedDelivery(body);
    const std::optional<Delivery> delivery = taken(body);
    if (!delivery) {
        return;
    }
    checkAgainstSent(*delivery, body);
    checkOrder(*delivery);
    if (!delivery->elements.empty()) {
        checkRepeated(*delivery, body);
    }
}

} // namespace
} // namespace monitorservice

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    monitorservice::tryInput({reinterpret_cast<const char*>(data), size});
    return 0;
}
