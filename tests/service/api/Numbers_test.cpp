#include "MeasuredFixture.h"

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace monitorservice::test {
namespace {

using ::testing::ElementsAre;

// Whatever number is accepted must be readable ever after: as a reading, as an initial value and as a limit.
class Numbers : public MeasuredFixture
{
protected:
    RawAnswer deliver(const std::string& name, const std::string& more) const
    {
        return call(editor, "POST", "pointLocations",
                    R"([{"cellId":")" + tower + R"(","subCategoryId":"ground","name":")" + name + "\"" +
                        more + "}]");
    }
    RawAnswer deliverReading(const std::string& name, const std::string& time, const std::string& value,
                             const std::string& more = {}) const
    {
        return deliver(name,
                       more + R"(,"data":[{"count":1,"time":")" + time + R"(","value":)" + value + "}]");
    }
    std::string pointNamed(const std::string& name) const
    {
        const RawAnswer answer = where("projects/p1/pointLocations", R"({"name":")" + name + "\"}");
        EXPECT_EQ(answer.status, 200U) << answer.body;
        return answer.body;
    }
};

double numberIn(const std::string& json, std::string_view pointer)
{
    simdjson::dom::parser parser;
    double number = std::numeric_limits<double>::quiet_NaN();
    const auto error = parser.parse(json).at_pointer(pointer).get(number);
    EXPECT_EQ(error, simdjson::SUCCESS) << json;
    return number;
}

// As a client may write it; all of them are accepted.
std::vector<std::string> acceptedNumbers()
{
    std::vector<std::string> numbers{"18446744073709551615",
                                     "9223372036854775808",
                                     "9223372036854775807",
                                     "-9223372036854775808",
                                     "1e17",
                                     "1e18",
                                     "1e19",
                                     "1e20",
                                     "-1e21",
                                     "1e22",
                                     "1.7976931348623157e308",
                                     "5e-324",
                                     "-0.0",
                                     "0.1",
                                     "0.00012345678901234567",
                                     "123456789012345.67"};
    std::mt19937_64 random(20240301);
    for (int i = 0; i < 25; ++i) {
        std::string number;
        const double exponent = 17 + static_cast<double>(random() % 5000) / 1000;
        appendJsonNumber(number, std::pow(10, exponent) * (i % 2 == 0 ? 1 : -1));
        numbers.push_back(number);
    }
    return numbers;
}

TEST_F(Numbers, ReadingIsReadComparedRepeatedAndCorrected)
{
    int index = 0;
    for (const std::string& number : acceptedNumbers()) {
        const std::string name = "R" + std::to_string(index++);
        const std::string time = "2015-12-21T12:00:00Z";
        const double value = std::strtod(number.c_str(), nullptr);
        ASSERT_EQ(deliverReading(name, time, number).status, 200U) << number;
        EXPECT_EQ(numberIn(pointNamed(name), "/0/data/0/value"), value) << number;
        std::string sent;
        appendJsonNumber(sent, value);
        EXPECT_EQ(
            count("projects/p1/pointLocations", R"({"name":")" + name + R"(","data.value":)" + sent + "}"),
            "1")
            << number;
        EXPECT_EQ(count("projects/p1/pointLocations",
                        R"({"name":")" + name + R"(","data.value":{"$lt":)" + sent + "}}"),
                  "0")
            << number;
        const std::string before = pointNamed(name);
        EXPECT_EQ(deliverReading(name, time, number).status, 200U) << number;
        EXPECT_EQ(pointNamed(name), before) << number;
        ASSERT_EQ(deliverReading(name, time, "2.5").status, 200U) << number;
        EXPECT_EQ(numberIn(pointNamed(name), "/0/data/0/value"), 2.5) << number;
    }
    EXPECT_EQ(count("projects/p1/pointLocations", R"({"data.value":2.5})"), std::to_string(index));
}

TEST_F(Numbers, InitialValueLeavesItsPointUsable)
{
    int index = 0;
    for (const std::string& number : acceptedNumbers()) {
        const std::string name = "I" + std::to_string(index++);
        const std::string initial = R"(,"initialValue":)" + number;
        ASSERT_EQ(deliver(name, initial).status, 200U) << number;
        EXPECT_EQ(deliverReading(name, "2015-12-21T12:00:00Z", "1", initial).status, 200U) << number;
        EXPECT_EQ(deliverReading(name, "2015-12-22T12:00:00Z", "2").status, 200U) << number;
        if (std::strtod(number.c_str(), nullptr) != 0) { // 0 is as good as not sent
            EXPECT_EQ(numberIn(pointNamed(name), "/0/initialValue"), std::strtod(number.c_str(), nullptr))
                << number;
        }
        EXPECT_EQ(count("projects/p1/pointLocations", R"({"alias":"","name":")" + name + "\"}"), "1")
            << number;
        EXPECT_EQ(deliver(name, R"(,"initialValue":3)").status, 200U) << number;
        EXPECT_EQ(numberIn(pointNamed(name), "/0/initialValue"), 3) << number;
    }
}

TEST_F(Numbers, LimitLeavesItsGroupAndDeliveriesUsable)
{
    for (const std::string& number : acceptedNumbers()) {
        if (number.front() == '-') {
            continue; // limits are not negative
        }
        const RawAnswer created =
            call(editor, "POST", "groupSettings",
                 R"({"projectId":"p1","cellId":")" + tower +
                     R"(","subCategoryId":"ground","groupName":"G","groupPoint":["W1"],"dayVarValue":)" +
                     number + R"(,"totalVar":)" + number + "}");
        ASSERT_EQ(created.status, 201U) << number << created.body;
        const std::string group = "groupSettings/" + member(created.body, "_id");
        EXPECT_EQ(numberIn(get(group).body, "/totalVar"), std::strtod(number.c_str(), nullptr)) << number;
        EXPECT_EQ(deliverReading("W1", "2015-12-21T12:00:00Z", number).status, 200U) << number;
        EXPECT_EQ(deliverReading("W1", "2015-12-22T12:00:00Z", "1").status, 200U) << number;
        EXPECT_EQ(members(where("projects/p1/groupSettings", R"({"viewPortId":""})"), "groupName"),
                  std::vector<std::string>{"G"})
            << number;
        const RawAnswer updated = call(editor, "PUT", group, R"({"groupName":"H"})");
        EXPECT_EQ(updated.status, 200U) << number;
        EXPECT_EQ(numberIn(updated.body, "/dayVarValue"), std::strtod(number.c_str(), nullptr)) << number;
        EXPECT_EQ(call(editor, "DELETE", group).status, 200U) << number;
    }
    // What alarms say of such excesses can be read, too.
    for (const std::string& alarm : members(get("projects/p1/alarmManages"), "_id")) {
        EXPECT_EQ(get("alarmManages/" + alarm + "/alarmDetails").status, 200U);
        EXPECT_EQ(where("alarmManages/" + alarm + "/alarmDetails", R"({"isInclinometer":true})").status,
                  200U);
    }
}

} // namespace
} // namespace monitorservice::test
