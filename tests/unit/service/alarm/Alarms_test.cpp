#include "unit/service/delivery/DeliveryText.h"
#include "unit/service/delivery/IntakeFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace monitorservice {
namespace {

using test::delivery;
using test::member;
using test::point;
using test::sample;
using ::testing::ElementsAre;

std::string at(int day, int hour = 12)
{
    const auto digits = [](int number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    return "2015-12-" + digits(day) + "T" + digits(hour) + ":00:00.000-08:00";
}

class Alarms : public test::IntakeFixture
{
protected:
    std::size_t alarms() const { return documents(DocumentKind::Alarm).size(); }
    std::string lastAlarm() const { return documents(DocumentKind::Alarm).back(); }
    std::vector<std::string> details() const
    {
        std::vector<std::string> details;
        const std::string alarm = member(lastAlarm(), "_id");
        for (const std::string& detail : documents(DocumentKind::AlarmDetail)) {
            if (member(detail, "alarmManId") == alarm) {
                details.push_back(detail);
            }
        }
        return details;
    }
    std::string depths() const
    {
        std::string depths;
        for (const std::string& depth : documents(DocumentKind::AlarmDepth)) {
            depths += (depths.empty() ? "" : " ") + member(depth, "depth") + "=" +
                      member(depth, "totalValue") + "@" + member(depth, "monitorTime");
        }
        return depths;
    }
};

TEST_F(Alarms, TotalVariationOverItsLimitRaisesOne)
{
    addGroup("g1", {"W1", "W2", "W3"}, 0, 0, 5);
    take(delivery({point("W2", {sample(at(21), 7, "16.25")}, R"(,"initialValue":10)"),
                   point("W1", {sample(at(21), 8, "3")}, R"(,"initialValue":10)"),
                   point("W3", {sample(at(21), 8, "15")}, R"(,"initialValue":10)")}));
    const std::string alarm = lastAlarm();
    EXPECT_EQ(member(alarm, "projectId"), "p1");
    EXPECT_EQ(member(alarm, "cellId"), "c1");
    EXPECT_EQ(member(alarm, "cellName"), "cell c1");
    EXPECT_EQ(member(alarm, "subCategoryId"), "s1");
    EXPECT_EQ(member(alarm, "alarmTime"), "2015-12-21T06:30:01.123Z");
    EXPECT_EQ(member(alarm, "pointCounts"), "2");
    EXPECT_EQ(member(alarm, "createdBy"), "Ada");
    const std::vector<std::string> found = details();
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(member(found[0], "alarmManId"), member(alarm, "_id"));
    EXPECT_EQ(member(found[0], "pointName"), "W1");
    EXPECT_EQ(member(found[0], "totalVar"), "-7");
    EXPECT_EQ(member(found[0], "dayVar"), "");
    EXPECT_EQ(member(found[0], "totalBeyound"), "2");
    EXPECT_EQ(member(found[0], "dayBeyound"), "0");
    EXPECT_EQ(member(found[0], "isThreeVar"), "false");
    EXPECT_EQ(member(found[0], "isInclinometer"), "false");
    EXPECT_EQ(member(found[0], "monitorCount"), "8");
    EXPECT_EQ(member(found[0], "monitorTime"), at(21));
    EXPECT_EQ(member(found[0], "depth"), "");
    EXPECT_EQ(member(found[0], "alarmTime"), member(alarm, "alarmTime"));
    EXPECT_EQ(member(found[1], "pointName"), "W2");
    EXPECT_EQ(member(found[1], "totalVar"), "6.25");
    EXPECT_EQ(depths(), "");
}

TEST_F(Alarms, DailyVariationIsPerDayOverAGap)
{
    addGroup("g1", {"W1"}, 0, 2, 0);
    take(delivery({point("W1", {sample(at(10, 9), 1, "99"), sample(at(10, 18), 2, "1")})}));
    EXPECT_EQ(alarms(), 0U);
    take(delivery({point("W1", {sample(at(14, 6), 3, "500"), sample(at(14, 7), 4, "11")})}));
    ASSERT_EQ(alarms(), 1U);
    EXPECT_EQ(member(details()[0], "totalVar"), "11");
    EXPECT_EQ(member(details()[0], "dayVar"), "2.5");
    EXPECT_EQ(member(details()[0], "dayBeyound"), "0.5");
    take(delivery({point("W1", {sample(at(20), 5, "23")})}));
    EXPECT_EQ(alarms(), 1U);
}

TEST_F(Alarms, DaysAreThoseOfTheProject)
{
    addGroup("g1", {"W1"}, 0, 2, 0);
    // 23:00 and 01:00 in the project, one day in UTC.
    take(delivery(
        {point("W1", {sample("2015-12-21T07:00:00Z", 1, "0"), sample("2015-12-21T09:00:00Z", 2, "5")})}));
    EXPECT_EQ(alarms(), 1U);
    EXPECT_EQ(member(details()[0], "dayVar"), "5");
}

TEST_F(Alarms, PercentAreOfTheInitialValue)
{
    addGroup("g1", {"W1", "W2", "W3"}, 1, 4, 0);
    take(delivery(
        {point("W1", {sample(at(20), 1, "-210"), sample(at(21), 2, "-220")}, R"(,"initialValue":-200)"),
         point("W2", {sample(at(20), 1, "1"), sample(at(21), 2, "1000")}),
         point("W3", {sample(at(20), 1, "100"), sample(at(21), 2, "104")}, R"(,"initialValue":100)")}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "pointName"), "W1");
    EXPECT_EQ(member(details()[0], "dayVar"), "-5");
    EXPECT_EQ(member(details()[0], "dayBeyound"), "1");
}

TEST_F(Alarms, OnlyAGroupOfTheSameMonitoringAndSubCategoryCounts)
{
    addGroup("g1", {"W1"}, 0, 0, 1, "c2", "s1");
    addGroup("g2", {"W1"}, 0, 0, 1, "c1", "s2");
    addGroup("g3", {"W2", "w1"}, 0, 0, 1);
    take(delivery({point("W1", {sample(at(21), 1, "100")})}));
    EXPECT_EQ(alarms(), 0U);
}

TEST_F(Alarms, PointInTwoGroupsHasTheWorseOfBoth)
{
    addGroup("g1", {"W1"}, 0, 0, 8);
    addGroup("g2", {"W1"}, 0, 0, 4);
    take(delivery({point("W1", {sample(at(21), 1, "10")})}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "totalBeyound"), "6");
    EXPECT_EQ(member(lastAlarm(), "pointCounts"), "1");
}

TEST_F(Alarms, SeveralDepthsAreOneDetailWithADepthEach)
{
    addGroup("g1", {"I1"}, 0, 0, 5);
    take(delivery(
        {point("I1", {sample(at(20), 1, "1")}, R"(,"depth":"0.5")"), point("I1", {}, R"(,"depth":"9")")}));
    take(delivery({point("I1", {sample(at(21), 2, "7")}, R"(,"depth":"1.0","initialValue":1)"),
                   point("I1", {sample(at(21), 2, "-9")}, R"(,"depth":"1.5","initialValue":1)"),
                   point("I1", {sample(at(21), 2, "2")}, R"(,"depth":"2.0","initialValue":1)")}));
    ASSERT_EQ(details().size(), 1U);
    const std::string detail = details()[0];
    EXPECT_EQ(member(detail, "depth"), "1.5");
    EXPECT_EQ(member(detail, "totalVar"), "-10");
    EXPECT_EQ(member(detail, "totalBeyound"), "5");
    EXPECT_EQ(member(detail, "isThreeVar"), "true");
    EXPECT_EQ(member(detail, "isInclinometer"), "true");
    // A depth without samples has no value to give; one that was not delivered now has that of its latest
    // sample.
    const std::string time = "@" + at(21);
    EXPECT_EQ(depths(), "0.5=1@" + at(20) + " 1.0=6" + time + " 1.5=-10" + time + " 2.0=1" + time);
    EXPECT_EQ(member(documents(DocumentKind::AlarmDepth).at(0), "detailId"), member(detail, "_id"));
}

TEST_F(Alarms, OldDataRaiseNone)
{
    take(delivery({point("W1", {sample(at(21), 2, "1")})}));
    addGroup("g1", {"W1"}, 0, 0, 5);
    take(delivery({point("W1", {sample(at(20), 1, "100")})}));
    EXPECT_EQ(alarms(), 0U);
    take(delivery({point("W1", {sample(at(21), 1, "100")})}));
    EXPECT_EQ(alarms(), 0U);
    take(delivery({point("W1", {sample(at(21), 3, "100")})}));
    EXPECT_EQ(alarms(), 1U);
}

TEST_F(Alarms, EveryNewDayOfADeliveryIsCompared)
{
    addGroup("g1", {"W1"}, 0, 5, 0);
    take(delivery({point("W1", {sample(at(18), 1, "1")})}));
    // The jump of the 21st has gone by the end of the delivery.
    take(delivery({point("W1", {sample(at(19), 2, "1"), sample(at(20), 3, "2"), sample(at(21), 4, "9"),
                                sample(at(22), 5, "5"), sample(at(24), 6, "1")})}));
    EXPECT_EQ(alarms(), 1U);
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "dayVar"), "7");
    EXPECT_EQ(member(details()[0], "dayBeyound"), "2");
    EXPECT_EQ(member(details()[0], "monitorCount"), "4");
    EXPECT_EQ(member(details()[0], "monitorTime"), at(21));
}

TEST_F(Alarms, TheFirstNewDayIsComparedWithTheDayHeldBefore)
{
    addGroup("g1", {"W1"}, 0, 5, 0);
    take(delivery({point("W1", {sample(at(20), 1, "1"), sample(at(21, 8), 2, "2")})}));
    EXPECT_EQ(alarms(), 0U);
    take(delivery({point("W1", {sample(at(21, 18), 3, "9"), sample(at(22), 4, "9")})}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "dayVar"), "8");
    EXPECT_EQ(member(details()[0], "monitorTime"), at(21, 18));
}

TEST_F(Alarms, DepthsAreThoseOfTheWorstDay)
{
    addGroup("g1", {"I1"}, 0, 0, 5);
    take(delivery({point("I1", {sample(at(20), 1, "1"), sample(at(21), 2, "9"), sample(at(22), 3, "2")},
                         R"(,"depth":"0.5")"),
                   point("I1", {sample(at(20), 1, "3"), sample(at(22), 3, "4")}, R"(,"depth":"1.0")")}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(depths(), "0.5=9@" + at(21) + " 1.0=3@" + at(20));
}

TEST_F(Alarms, CorrectionOfTheLatestValueRaisesOne)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    const std::string wrong = delivery({point("W1", {sample(at(21), 1, "1")})});
    const std::string right = delivery({point("W1", {sample(at(21), 1, "10")})});
    take(wrong);
    EXPECT_EQ(alarms(), 0U);
    take(right);
    EXPECT_EQ(alarms(), 1U);
    take(right);
    EXPECT_EQ(alarms(), 1U);
}

TEST_F(Alarms, EachMonitoringHasItsOwn)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    addGroup("g2", {"W1"}, 0, 0, 5, "c2", "s2");
    take(delivery({point("W1", {sample(at(21), 1, "10")}),
                   point("W1", {sample(at(21), 1, "20")}, "", "c2", "s2"),
                   point("W1", {sample(at(21), 1, "30")}, "", "c2", "s1")}));
    std::vector<std::string> targets;
    for (const std::string& alarm : documents(DocumentKind::Alarm)) {
        targets.push_back(member(alarm, "cellId") + member(alarm, "subCategoryId"));
    }
    EXPECT_THAT(targets, ElementsAre("c1s1", "c2s2"));
}

TEST_F(Alarms, SmallVariationsAreWrittenWithoutAnExponent)
{
    addGroup("g1", {"W1"}, 0, 0, 1e-9);
    take(delivery({point("W1", {sample(at(21), 1, "0.0000001")})}));
    EXPECT_EQ(member(details()[0], "totalVar"), "0.0000001");
}

TEST_F(Alarms, EnormousVariationsAreWrittenWithoutAnExponent)
{
    addGroup("g1", {"W1"}, 0, 1, 1);
    take(delivery({point("W1", {sample(at(20), 1, "-1.7e308"), sample(at(21), 1, "1.7e308")},
                         R"(,"initialValue":-1.7e308)")}));
    EXPECT_EQ(member(details()[0], "totalVar").size(), 309U);
    EXPECT_EQ(member(details()[0], "totalVar").find_first_not_of("0123456789"), std::string::npos);
}

} // namespace
} // namespace monitorservice
