#include "statistics/DailyStatistics.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace monitorservice {
namespace {

constexpr Instant hour = 3600 * 1000;
constexpr std::int64_t day20151025 = 16733;
constexpr Instant midnight20151025 = day20151025 * 24 * hour - 2 * hour; // in Vienna, in summer time

void begin(DailyStatistics& statistics, const char* id, const char* name, const char* depth,
           const char* links = "[]")
{
    statistics.beginPoint({0, id, "Settlement", name, depth, links, "{}"});
}

// The values of the only day, each as name/depth/identifier.
std::string order(DailyStatistics& statistics)
{
    LocalDays days("UTC");
    const std::string text = statistics.text(days);
    std::string order;
    for (std::size_t place = text.find("\"_id\""); place != std::string::npos;
         place = text.find("\"_id\"", place + 1)) {
        const auto value = [&text, place](const char* name) {
            const std::size_t begin = text.find(name, place) + std::string(name).size() + 3;
            return text.substr(begin, text.find('"', begin) - begin);
        };
        order += (order.empty() ? "" : " ") + value("name") + "/" + value("depth") + "/" + value("_id");
    }
    return order;
}

TEST(DailyStatistics, OfNothingIsAnEmptyArray)
{
    DailyStatistics statistics;
    LocalDays days("UTC");
    begin(statistics, "p", "S1", "");
    EXPECT_EQ(statistics.size(), 0U);
    EXPECT_EQ(statistics.text(days), "[]");
}

TEST(DailyStatistics, WritesDaysWithTheOffsetOfTheirBegin)
{
    DailyStatistics statistics;
    begin(statistics, "p", "S \"1\"", "2.5", R"([{"type":"model","rId":"m1"}])");
    statistics.add({day20151025 + 1, midnight20151025 + 25 * hour, 2, -330, -0.5});
    statistics.add({day20151025, midnight20151025 + 25 * hour - 1, 1, std::nullopt, 1e22});
    EXPECT_EQ(statistics.size(), 2U);
    LocalDays days("Europe/Vienna");
    EXPECT_EQ(statistics.text(days),
              R"([{"time":"2015-10-25T00:00:00.000+02:00","data":[{"_id":"p","name":"S \"1\"","depth":"2.5",)"
              R"("count":1,"value":1e+22,"time":"2015-10-25T22:59:59.999Z",)"
              R"("entity":[{"type":"model","rId":"m1"}]}]},)"
              R"({"time":"2015-10-26T00:00:00.000+01:00","data":[{"_id":"p","name":"S \"1\"","depth":"2.5",)"
              R"("count":2,"value":-0.5,"time":"2015-10-25T17:30:00.000-05:30",)"
              R"("entity":[{"type":"model","rId":"m1"}]}]}])");
}

TEST(DailyStatistics, ADayWithoutMidnightBeginsWhenTheClockStarts)
{
    DailyStatistics statistics;
    begin(statistics, "p", "S1", "");
    statistics.add({17839, 1541311200000, 1, std::nullopt, 1}); // 2018-11-04
    LocalDays days("America/Sao_Paulo");
    EXPECT_EQ(statistics.text(days).substr(0, 41), R"([{"time":"2018-11-04T01:00:00.000-02:00",)");
}

TEST(DailyStatistics, PointsGoByNameThenByDepthAsANumberThenByIdentifier)
{
    DailyStatistics statistics;
    for (const auto& [id, name, depth] : {std::array<const char*, 3>{"1", "I2", "10"},
                                          {"2", "I10", "3"},
                                          {"3", "I2", "2.5"},
                                          {"4", "I2", "deep"},
                                          {"6", "I2", "-1"},
                                          {"5", "I2", "-1"},
                                          {"7", "I2", ""},
                                          {"8", "I2", "1e1"},
                                          {"9", "I2", "nan"}}) {
        begin(statistics, id, name, depth);
        statistics.add({0, 0, 1, std::nullopt, 0});
    }
    EXPECT_EQ(order(statistics),
              "I10/3/2 I2/-1/5 I2/-1/6 I2/2.5/3 I2/10/1 I2/1e1/8 I2//7 I2/deep/4 I2/nan/9");
}

} // namespace
} // namespace monitorservice
