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

class Judgements : public test::IntakeFixture
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

TEST_F(Judgements, TotalVariationOverItsLimitRaisesOne)
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

TEST_F(Judgements, DailyVariationIsPerDayOverAGap)
{
    addGroup("g1", {"W1"}, 0, 2, 0);
    take(delivery({point("W1", {sample(at(10, 9), 1, "99"), sample(at(10, 18), 2, "1")})}));
    EXPECT_EQ(alarms(), 0U);
    take(delivery({point("W1", {sample(at(14, 6), 3, "9"), sample(at(14, 7), 4, "11")})}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "totalVar"), "-88");
    EXPECT_EQ(member(details()[0], "dayVar"), "2.5");
    EXPECT_EQ(member(details()[0], "dayBeyound"), "0.5");
    EXPECT_EQ(member(details()[0], "monitorCount"), "4");
    const std::vector<std::string> before = details();
    take(delivery({point("W1", {sample(at(20), 5, "23")})}));
    EXPECT_EQ(details(), before);
}

TEST_F(Judgements, DaysAreThoseOfTheProject)
{
    addGroup("g1", {"W1"}, 0, 2, 0);
    // 23:00 and 01:00 in the project, one day in UTC.
    take(delivery(
        {point("W1", {sample("2015-12-21T07:00:00Z", 1, "0"), sample("2015-12-21T09:00:00Z", 2, "5")})}));
    EXPECT_EQ(alarms(), 1U);
    EXPECT_EQ(member(details()[0], "dayVar"), "5");
}

TEST_F(Judgements, PercentAreOfTheReference)
{
    addGroup("g1", {"W1", "W2", "W3", "W4"}, 1, 4, 0);
    take(delivery(
        {point("W1", {sample(at(20), 1, "-210"), sample(at(21), 2, "-220")}, R"(,"initialValue":-200)"),
         point("W2", {sample(at(20), 1, "0"), sample(at(21), 2, "1000")}),
         point("W3", {sample(at(20), 1, "100"), sample(at(21), 2, "104")}, R"(,"initialValue":100)"),
         point("W4", {sample(at(20), 1, "2"), sample(at(21), 2, "2.1")})}));
    ASSERT_EQ(details().size(), 2U);
    EXPECT_EQ(member(details()[0], "pointName"), "W1");
    EXPECT_EQ(member(details()[0], "dayVar"), "-5");
    EXPECT_EQ(member(details()[0], "dayBeyound"), "1");
    EXPECT_EQ(member(details()[1], "pointName"), "W4");
    EXPECT_EQ(member(details()[1], "dayVar"), "5");
    EXPECT_EQ(member(details()[1], "reference"), "2");
    EXPECT_EQ(member(details()[1], "dayVarType"), "1");
}

TEST_F(Judgements, OnlyAGroupOfTheSameMonitoringAndSubCategoryCounts)
{
    addGroup("g1", {"W1"}, 0, 0, 1, "c2", "s1");
    addGroup("g2", {"W1"}, 0, 0, 1, "c1", "s2");
    addGroup("g3", {"W2", "w1"}, 0, 0, 1);
    take(delivery({point("W1", {sample(at(21), 1, "100")}, R"(,"initialValue":1)")}));
    EXPECT_EQ(alarms(), 0U);
}

TEST_F(Judgements, PointInTwoGroupsHasTheWorseOfBoth)
{
    addGroup("g1", {"W1"}, 0, 0, 8);
    addGroup("g2", {"W1"}, 0, 0, 4);
    take(delivery({point("W1", {sample(at(21), 1, "10")}, R"(,"initialValue":-1)")}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "totalBeyound"), "7");
    EXPECT_EQ(member(details()[0], "groupId"), "g2");
    EXPECT_EQ(member(details()[0], "groupName"), "group g2");
    EXPECT_EQ(member(details()[0], "totalLimit"), "4");
    EXPECT_EQ(member(details()[0], "dayLimit"), "0");
    EXPECT_EQ(member(details()[0], "unit"), "mm");
    EXPECT_EQ(member(details()[0], "value"), "10");
    EXPECT_EQ(member(lastAlarm(), "pointCounts"), "1");
}

TEST_F(Judgements, DetailsAreTheReadingsWithTheGreatestTotalAndTheGreatestDailyExcess)
{
    addGroup("g1", {"W1"}, 0, 5, 10);
    take(delivery({point(
        "W1",
        {sample(at(18), 1, "0"), sample(at(19), 2, "9"), sample(at(20), 3, "13"), sample(at(21), 4, "17")},
        R"(,"initialValue":0.5)")}));
    const std::vector<std::string> found = details();
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(member(lastAlarm(), "pointCounts"), "1");
    EXPECT_EQ(member(found[0], "monitorCount"), "4");
    EXPECT_EQ(member(found[0], "totalVar"), "16.5");
    EXPECT_EQ(member(found[0], "totalBeyound"), "6.5");
    EXPECT_EQ(member(found[0], "dayVar"), "4");
    EXPECT_EQ(member(found[0], "dayBeyound"), "0");
    EXPECT_EQ(member(found[1], "monitorCount"), "2");
    EXPECT_EQ(member(found[1], "totalBeyound"), "0");
    EXPECT_EQ(member(found[1], "dayVar"), "9");
    EXPECT_EQ(member(found[1], "dayBeyound"), "4");
}

TEST_F(Judgements, ReadingThatIsTheWorstInBothWaysIsOneDetail)
{
    addGroup("g1", {"W1"}, 0, 5, 10);
    take(delivery({point("W1", {sample(at(18), 1, "0"), sample(at(19), 2, "20"), sample(at(20), 3, "17")})}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "totalBeyound"), "10");
    EXPECT_EQ(member(details()[0], "dayBeyound"), "15");
}

TEST_F(Judgements, OneReadingBeyondLimitsOfTwoGroupsLosesNeither)
{
    addGroup("g1", {"W1"}, 0, 5, 0);
    addGroup("g2", {"W1"}, 0, 0, 10);
    take(delivery({point("W1", {sample(at(18), 1, "0"), sample(at(19), 2, "20")})}));
    const std::vector<std::string> found = details();
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(member(found[0], "groupId") + member(found[0], "totalBeyound"), "g210");
    EXPECT_EQ(member(found[1], "groupId") + member(found[1], "dayBeyound"), "g115");
}

TEST_F(Judgements, DailyExcessesInPercentAndInTheUnitAreComparedInTheUnit)
{
    // 20 % of 50 are 10, of which 5 are allowed; 9 of the other group are 1 too many.
    addGroup("g1", {"W1"}, 1, 10, 0);
    addGroup("g2", {"W1"}, 0, 9, 0);
    take(delivery({point("W1", {sample(at(18), 1, "50"), sample(at(19), 2, "60")})}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "groupId"), "g1");
    EXPECT_EQ(member(details()[0], "dayVar"), "20");
    EXPECT_EQ(member(details()[0], "dayBeyound"), "10");
}

TEST_F(Judgements, EarliestReadingIsTheReferenceOfAPointWithoutInitialValue)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    take(delivery({point("W1", {sample(at(20), 1, "100"), sample(at(21), 2, "105")})}));
    EXPECT_EQ(alarms(), 0U);
    // An earlier one comes late, and what was held is judged anew.
    take(delivery({point("W1", {sample(at(19), 0, "98")})}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "reference"), "98");
    EXPECT_EQ(member(details()[0], "totalVar"), "7");
    EXPECT_EQ(member(details()[0], "monitorCount"), "2");
    take(delivery({point("W1", {sample(at(19), 0, "101")})}));
    EXPECT_EQ(alarms(), 0U);
}

TEST_F(Judgements, InitialValueThatIsGivenLaterIsTheReferenceOfAllReadings)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    take(delivery({point("W1", {sample(at(20), 1, "100"), sample(at(21), 2, "101")})}));
    EXPECT_EQ(alarms(), 0U);
    take(delivery({point("W1", {}, R"(,"initialValue":94)")}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "totalVar"), "7");
    take(delivery({point("W1", {}, R"(,"initialValue":100)")}));
    EXPECT_EQ(alarms(), 0U);
}

TEST_F(Judgements, SeveralDepthsAreOneDetailWithADepthEach)
{
    addGroup("g1", {"I1"}, 0, 0, 5, "c3", "s3");
    const auto at3 = [](const std::vector<std::string>& samples, const std::string& more) {
        return point("I1", samples, more, "c3", "s3");
    };
    take(delivery({at3({sample(at(20), 1, "1")}, R"(,"depth":"0.5")"), at3({}, R"(,"depth":"9")")}));
    take(delivery({at3({sample(at(21), 2, "7")}, R"(,"depth":"1.0","initialValue":1)"),
                   at3({sample(at(21), 2, "-9")}, R"(,"depth":"1.5","initialValue":1)"),
                   at3({sample(at(21), 2, "2")}, R"(,"depth":"2.0","initialValue":1)")}));
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
    EXPECT_EQ(depths(), "0.5=0@" + at(20) + " 1.0=6" + time + " 1.5=-10" + time + " 2.0=1" + time);
    EXPECT_EQ(member(documents(DocumentKind::AlarmDepth).at(0), "detailId"), member(detail, "_id"));
}

TEST_F(Judgements, InclinometerIsWhatItsSubCategorySays)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    addGroup("g2", {"I1", "I2"}, 0, 0, 5, "c3", "s3");
    const std::string started = R"(,"initialValue":1,"depth":"1")";
    take(delivery({point("W1", {sample(at(21), 1, "10")}, started),
                   point("W1", {sample(at(21), 1, "2")}, R"(,"initialValue":1,"depth":"2")"),
                   point("I1", {sample(at(21), 1, "10")}, started, "c3", "s3"),
                   point("I2", {sample(at(21), 1, "10")}, R"(,"initialValue":1)", "c3", "s3")}));
    std::vector<std::string> kinds;
    for (const std::string& detail : documents(DocumentKind::AlarmDetail)) {
        kinds.push_back(member(detail, "pointName") + " " + member(detail, "isInclinometer") + " " +
                        member(detail, "isThreeVar"));
    }
    EXPECT_THAT(kinds, ElementsAre("W1 false true", "I1 true true", "I2 true false"));
}

TEST_F(Judgements, DepthThatIsDeliveredLaterIsAddedToTheDetail)
{
    addGroup("g1", {"I1"}, 0, 0, 5, "c3", "s3");
    const auto at3 = [](int day, int count, const char* value, const char* depth) {
        return delivery({point("I1", {sample(at(day), count, value)},
                               std::string(R"(,"initialValue":1,"depth":")") + depth + "\"", "c3", "s3")});
    };
    take(at3(21, 2, "10", "1"));
    EXPECT_EQ(depths(), "1=9@" + at(21));
    take(at3(21, 2, "3", "2"));
    EXPECT_EQ(depths(), "1=9@" + at(21) + " 2=2@" + at(21));
    // Behind the measurement of the detail, and corrected.
    take(at3(22, 3, "4", "2"));
    take(at3(21, 2, "2", "2"));
    EXPECT_EQ(depths(), "1=9@" + at(21) + " 2=1@" + at(21));
    EXPECT_EQ(alarms(), 1U);
}

TEST_F(Judgements, OldReadingsAreJudgedLikeNewOnes)
{
    take(delivery({point("W1", {sample(at(21), 2, "1")}, R"(,"initialValue":1)")}));
    addGroup("g1", {"W1"}, 0, 0, 5);
    take(delivery({point("W1", {sample(at(20), 1, "100")})}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "monitorTime"), at(20));
}

TEST_F(Judgements, GroupThatIsMadeJudgesNothingByItself)
{
    take(delivery({point("W1", {sample(at(20), 1, "1"), sample(at(21), 2, "100")})}));
    addGroup("g1", {"W1"}, 0, 0, 5);
    take(delivery({point("W1", {sample(at(22), 3, "2")})}));
    EXPECT_EQ(alarms(), 0U);
}

TEST_F(Judgements, NextMeasuredDayIsJudgedAnewWhenTheLastReadingOfADayChanges)
{
    addGroup("g1", {"W1"}, 0, 5, 0);
    take(delivery({point("W1", {sample(at(18), 1, "0"), sample(at(20, 8), 2, "4"), sample(at(20, 9), 3, "9"),
                                sample(at(22), 4, "10")})}));
    EXPECT_EQ(alarms(), 0U);
    // 9 - 3 on the 20th is too much now, 4 - 3 is not; the 22nd is counted from the 20th.
    take(delivery({point("W1", {sample(at(19), 9, "3")})}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "monitorCount"), "3");
    EXPECT_EQ(member(details()[0], "dayVar"), "6");
    // An earlier reading of that day changes nothing, a later one takes the excess away.
    take(delivery({point("W1", {sample(at(19, 6), 8, "-1")})}));
    EXPECT_EQ(alarms(), 1U);
    take(delivery({point("W1", {sample(at(19, 20), 10, "5")})}));
    EXPECT_EQ(alarms(), 0U);
}

TEST_F(Judgements, EveryNewDayOfADeliveryIsCompared)
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

TEST_F(Judgements, TheFirstNewDayIsComparedWithTheDayHeldBefore)
{
    addGroup("g1", {"W1"}, 0, 5, 0);
    take(delivery({point("W1", {sample(at(20), 1, "1"), sample(at(21, 8), 2, "2")})}));
    EXPECT_EQ(alarms(), 0U);
    take(delivery({point("W1", {sample(at(21, 18), 3, "9"), sample(at(22), 4, "9")})}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "dayVar"), "8");
    EXPECT_EQ(member(details()[0], "monitorTime"), at(21, 18));
}

TEST_F(Judgements, DepthsAreThoseOfTheMeasurementOfTheDetail)
{
    addGroup("g1", {"I1"}, 0, 0, 5);
    take(delivery({point("I1",
                         {sample(at(20), 1, "1"), sample(at(21, 8), 2, "9"), sample(at(21), 3, "4"),
                          sample(at(22), 4, "2")},
                         R"(,"depth":"0.5")"),
                   point("I1", {sample(at(20), 1, "3"), sample(at(21, 8), 2, "5"), sample(at(21), 3, "6")},
                         R"(,"depth":"1.0")"),
                   point("I1", {sample(at(20), 1, "3"), sample(at(22), 4, "4")}, R"(,"depth":"1.5")")}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(depths(), "0.5=8@" + at(21, 8) + " 1.0=2@" + at(21, 8) + " 1.5=0@" + at(20));
}

TEST_F(Judgements, CorrectionRaisesAndWithdraws)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    const auto reading = [](const char* value) {
        return delivery({point("W1", {sample(at(21), 1, value)}, R"(,"initialValue":1)")});
    };
    take(reading("1"));
    EXPECT_EQ(alarms(), 0U);
    take(reading("10"));
    EXPECT_EQ(alarms(), 1U);
    const std::vector<std::string> before = everything();
    take(reading("10"));
    EXPECT_EQ(everything(), before);
    const std::string alarm = member(lastAlarm(), "_id");
    const std::string detail = details()[0];
    take(reading("1"));
    EXPECT_EQ(alarms(), 0U);
    EXPECT_TRUE(documents(DocumentKind::AlarmDetail).empty());
    const std::string change = documents(DocumentKind::Change).back();
    EXPECT_EQ(member(change, "action"), "alarm.withdrawn");
    EXPECT_EQ(member(change, "subject"), alarm);
    EXPECT_EQ(member(change, "name"), "W1");
    EXPECT_EQ(member(change, "before"), R"({"readingsWithdrawn":1,"details":[)" + detail + "]}");
    EXPECT_EQ(member(change, "after"), R"({"details":[]})");
    EXPECT_EQ(member(change, "createdBy"), "Ada");
}

TEST_F(Judgements, NextWorstTakesThePlaceOfAWithdrawnReading)
{
    addGroup("g1", {"W1", "W2"}, 0, 0, 5);
    take(delivery({point("W1", {sample(at(20), 1, "7"), sample(at(21), 2, "700"), sample(at(22), 3, "8")},
                         R"(,"initialValue":1)"),
                   point("W2", {sample(at(20), 1, "7")}, R"(,"initialValue":1)")}));
    const std::string id = member(details()[0], "_id");
    EXPECT_EQ(member(details()[0], "totalVar"), "699");
    take(delivery({point("W1", {sample(at(21), 2, "7.5")})}));
    ASSERT_EQ(details().size(), 2U);
    EXPECT_EQ(member(details()[0], "_id"), id);
    EXPECT_EQ(member(details()[0], "totalVar"), "7");
    EXPECT_EQ(member(details()[0], "monitorCount"), "3");
    EXPECT_EQ(member(lastAlarm(), "pointCounts"), "2");
    // It was corrected, but is in excess still.
    EXPECT_EQ(member(documents(DocumentKind::Change).back(), "action"), "sample.corrected");
    take(delivery({point("W1", {sample(at(20), 1, "1"), sample(at(21), 2, "1"), sample(at(22), 3, "1")})}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "pointName"), "W2");
    EXPECT_EQ(member(lastAlarm(), "pointCounts"), "1");
    const std::string change = documents(DocumentKind::Change).back();
    EXPECT_EQ(member(member(change, "before"), "readingsWithdrawn"), "3");
}

TEST_F(Judgements, DeliveriesOfOneDayHaveOneAlarm)
{
    addGroup("g1", {"W1", "W2"}, 0, 0, 5);
    for (int count = 0; count < 96; ++count) {
        take(delivery({point("W1", {sample(at(21, count % 24), count, std::to_string(10 + count % 7))},
                             R"(,"initialValue":1)")}));
    }
    ASSERT_EQ(alarms(), 1U);
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "totalVar"), "15");
    const std::string alarm = lastAlarm();
    EXPECT_EQ(member(alarm, "alarmTime"), "2015-12-21T06:30:01.123Z");
    EXPECT_EQ(member(alarm, "alarmDay"), "2015-12-20");
    take(delivery({point("W2", {sample(at(21), 1, "7")}, R"(,"initialValue":1)")}));
    EXPECT_EQ(member(lastAlarm(), "_id"), member(alarm, "_id"));
    EXPECT_EQ(member(lastAlarm(), "pointCounts"), "2");
    EXPECT_EQ(member(lastAlarm(), "alarmTime"), member(alarm, "alarmTime"));
    EXPECT_GT(member(lastAlarm(), "updatedAt"), member(alarm, "updatedAt"));
}

TEST_F(Judgements, NextDayOfTheProjectHasAnAlarmOfItsOwn)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    take(delivery({point("W1", {sample(at(20), 1, "10")}, R"(,"initialValue":1)")}));
    now += 90LL * 60 * 1000; // 22:30 in the project: now the 21st has begun there
    take(delivery({point("W1", {sample(at(21), 2, "9")})}));
    const std::vector<std::string> both = documents(DocumentKind::Alarm);
    ASSERT_EQ(both.size(), 2U);
    EXPECT_EQ(member(both[0], "alarmDay"), "2015-12-20");
    EXPECT_EQ(member(both[1], "alarmDay"), "2015-12-21");
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "monitorCount"), "2");
    // What was found on the first day stays in its alarm.
    take(delivery({point("W1", {sample(at(20), 1, "11")})}));
    EXPECT_EQ(alarms(), 2U);
    EXPECT_EQ(member(documents(DocumentKind::AlarmDetail)[0], "totalVar"), "10");
    take(delivery({point("W1", {sample(at(20), 1, "1")})}));
    ASSERT_EQ(alarms(), 1U);
    EXPECT_EQ(member(lastAlarm(), "_id"), member(both[1], "_id"));
}

TEST_F(Judgements, ReadingOfAGroupThatIsGoneIsWithdrawnWhenItIsJudgedAgain)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    take(delivery({point("W1", {sample(at(20), 1, "10")}, R"(,"initialValue":1)")}));
    {
        const auto session = store.write();
        session->documents(DocumentKind::Group).remove("p1", "g1");
        session->commit();
    }
    take(delivery({point("W1", {sample(at(21), 2, "20")})}));
    EXPECT_EQ(alarms(), 1U);
    take(delivery({point("W1", {sample(at(20), 1, "11")})}));
    EXPECT_EQ(alarms(), 0U);
}

TEST_F(Judgements, LimitsOfOneSideAlarmForThatSideAlone)
{
    Group group;
    group.id = "g1";
    group.project = "p1";
    group.cell = "c1";
    group.subCategory = "s1";
    group.name = "falling";
    group.points = {"W1", "W2"};
    group.totalVariation = 5;
    group.totalSide = LimitSide::Falling;
    addGroup(group);
    take(delivery({point("W1", {sample(at(20), 1, "10")}, R"(,"initialValue":1)"),
                   point("W2", {sample(at(20), 1, "-10")}, R"(,"initialValue":1)")}));
    ASSERT_EQ(details().size(), 1U);
    EXPECT_EQ(member(details()[0], "pointName"), "W2");
    EXPECT_EQ(member(details()[0], "totalVarSide"), "falling");
    EXPECT_EQ(member(details()[0], "dayVarSide"), "both");
}

TEST_F(Judgements, EachMonitoringHasItsOwn)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    addGroup("g2", {"W1"}, 0, 0, 5, "c2", "s2");
    const std::string initialValue = R"(,"initialValue":1)";
    take(delivery({point("W1", {sample(at(21), 1, "10")}, initialValue),
                   point("W1", {sample(at(21), 1, "20")}, initialValue, "c2", "s2"),
                   point("W1", {sample(at(21), 1, "30")}, initialValue, "c2", "s1")}));
    std::vector<std::string> targets;
    for (const std::string& alarm : documents(DocumentKind::Alarm)) {
        targets.push_back(member(alarm, "cellId") + member(alarm, "subCategoryId"));
    }
    EXPECT_THAT(targets, ElementsAre("c1s1", "c2s2"));
}

// The example of docs/alarms.md.
TEST_F(Judgements, ExampleOfTheManual)
{
    addGroup("g1", {"S1"}, 0, 2, 10);
    const auto march = [](int day, int hour) {
        return "2026-03-0" + std::to_string(day) + "T" + (hour < 10 ? "0" : "") + std::to_string(hour) +
               ":00:00.000-08:00";
    };
    const auto told = [this] {
        std::string members;
        for (const std::string& detail : details()) {
            for (const char* const name :
                 {"monitorCount", "totalVar", "totalBeyound", "dayVar", "dayBeyound"}) {
                members += member(detail, name) + ' ';
            }
        }
        return members;
    };
    take(delivery({point("S1",
                         {sample(march(2, 8), 1, "101.0"), sample(march(2, 20), 2, "101.5"),
                          sample(march(3, 8), 3, "103.0"), sample(march(6, 8), 4, "110.5"),
                          sample(march(6, 20), 5, "110.0")},
                         R"(,"initialValue":100)")}));
    EXPECT_EQ(told(), "4 10.5 0.5 2.5 0.5 ");
    take(delivery({point("S1", {sample(march(6, 8), 4, "105.0")})}));
    EXPECT_EQ(told(), "5 10 0 2.33333333333 0.33333333333 ");
    take(delivery({point("S1", {sample(march(5, 8), 6, "107.0")})}));
    EXPECT_EQ(told(), "5 10 0 3 1 ");
}

TEST_F(Judgements, SmallVariationsAreWrittenWithoutAnExponent)
{
    addGroup("g1", {"W1"}, 0, 0, 1e-9);
    take(delivery({point("W1", {sample(at(20), 1, "0"), sample(at(21), 2, "0.0000001")})}));
    EXPECT_EQ(member(details()[0], "totalVar"), "0.0000001");
}

TEST_F(Judgements, EnormousVariationsAreWrittenWithoutAnExponent)
{
    addGroup("g1", {"W1"}, 0, 1, 1);
    take(delivery({point("W1", {sample(at(20), 1, "-1.7e308"), sample(at(21), 1, "1.7e308")},
                         R"(,"initialValue":-1.7e308)")}));
    EXPECT_EQ(member(details()[0], "totalVar").size(), 309U);
    EXPECT_EQ(member(details()[0], "totalVar").find_first_not_of("0123456789"), std::string::npos);
}

} // namespace
} // namespace monitorservice
