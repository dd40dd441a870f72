#include "DeliveryText.h"

#include "time/Instant.h"

#include <array>
#include <charconv>

namespace {

constexpr monitorservice::Instant firstTime = 1450425600000; // 2015-12-18T00:00:00-08:00

} // namespace

std::string sampleText(std::size_t number)
{
    const monitorservice::Instant time = firstTime + static_cast<monitorservice::Instant>(number) * 60'000;
    std::array<char, 32> value{};
    const double settlement = static_cast<double>(number % 10'007) / 128;
    const auto end = std::to_chars(value.data(), value.data() + value.size(), settlement).ptr;
    return R"({"count":)" + std::to_string(number) + R"(,"time":")" + monitorservice::isoText(time, 60) +
           R"(","value":)" + std::string(value.data(), end) + R"(,"timeFlag":""})";
}

std::string deliveryText(const DeliveryTarget& target, std::size_t points, std::size_t samplesPerPoint,
                         std::size_t first)
{
    std::string body = "[";
    for (std::size_t point = 0; point < points; ++point) {
        body += point == 0 ? "" : ",";
        body += R"({"projectId":")" + target.project + R"(","cellId":")" + target.cell +
                R"(","subCategoryId":")" + target.subCategory + R"(","name":"W)" + std::to_string(point) +
                R"(","alias":"","dataType":1,"initialValue":0,"offsetDirection":"","depth":"",)"
                R"("insertCount":0,"lastCount":0,"fileId":null,"lastDate":"","links":[],"data":[)";
        for (std::size_t sample = 0; sample < samplesPerPoint; ++sample) {
            body += sample == 0 ? "" : ",";
            body += sampleText(first + sample);
        }
        body += "]}";
    }
    return body + "]";
}

std::string largestDelivery(const DeliveryTarget& target)
{
    constexpr std::size_t largest = 64 * 1024 * 1024;
    const std::size_t sampleSize = sampleText(1'000'000).size() + 1;
    std::string body;
    for (std::size_t samples = largest / sampleSize + 20'000; body.empty() || body.size() > largest;
         samples -= 2'000) {
        body = deliveryText(target, 1, samples, 0);
    }
    return body;
}
