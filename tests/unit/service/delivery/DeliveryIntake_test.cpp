#include "delivery/DeliveryIntake.h"

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
using ::testing::HasSubstr;

const std::string day1 = "2015-12-21T12:00:00.000-08:00";
const std::string day2 = "2015-12-22T12:00:00.000-08:00";
const std::string day3 = "2015-12-23T12:00:00.000-08:00";

class DeliveryIntake : public test::IntakeFixture
{
protected:
    std::string pointDocument(const std::string& name) const
    {
        for (const test::HeldPoint& point : points()) {
            if (point.name == name) {
                return point.document;
            }
        }
        return "nothing";
    }
    // The samples of all points, in the order in which these were made.
    std::vector<Sample> heldSamples() const
    {
        std::vector<Sample> samples;
        for (const test::HeldPoint& point : points()) {
            samples.insert(samples.end(), point.samples.begin(), point.samples.end());
        }
        return samples;
    }
    std::string samples() const
    {
        std::string values;
        for (const Sample& sample : heldSamples()) {
            values += (values.empty() ? "" : " ") + test::exactText(sample.value);
        }
        return values;
    }
    std::string dayValues() const
    {
        std::string values;
        for (const test::HeldPoint& point : points()) {
            for (const DaySummary& day : point.days) {
                values += (values.empty() ? "" : " ") + test::exactText(day.value) + "/" +
                          std::to_string(day.samples);
            }
        }
        return values;
    }
    std::string dataManage() const { return documents(DocumentKind::DataManage).at(0); }
};

TEST_F(DeliveryIntake, NewPointIsMadeWithItsSamples)
{
    ASSERT_EQ(take(delivery(
                  {point("W1", {sample(day2, 2, "1.5"), sample(day1, 1, "1.25", "A")},
                         R"(,"alias":"north","dataType":3,"initialValue":1,"depth":"2.5",)"
                         R"("offsetDirection":"down","fileId":"f1","links":[{"type":"model","rId":"m"}])")})),
              "changed");
    const std::string document = pointDocument("W1");
    EXPECT_EQ(member(document, "_id").size(), 24U);
    EXPECT_EQ(member(document, "projectId"), "p1");
    EXPECT_EQ(member(document, "cellId"), "c1");
    EXPECT_EQ(member(document, "subCategoryId"), "s1");
    EXPECT_EQ(member(document, "alias"), "north");
    EXPECT_EQ(member(document, "dataType"), "3");
    EXPECT_EQ(member(document, "initialValue"), "1");
    EXPECT_EQ(member(document, "offsetDirection"), "down");
    EXPECT_EQ(member(document, "depth"), "2.5");
    EXPECT_EQ(member(document, "insertCount"), "2");
    EXPECT_EQ(member(document, "lastCount"), "2");
    EXPECT_EQ(member(document, "lastDate"), day2);
    EXPECT_EQ(member(document, "fileId"), "f1");
    EXPECT_EQ(member(document, "links"), R"([{"type":"model","rId":"m"}])");
    EXPECT_EQ(member(document, "createdAt"), "2015-12-21T06:30:01.123Z");
    EXPECT_EQ(member(document, "createdBy"), "Ada");
    EXPECT_EQ(member(document, "updatedAt"), "2015-12-21T06:30:01.123Z");
    EXPECT_EQ(member(document, "updatedBy"), "Ada");
    EXPECT_EQ(answer, R"([{"_id":")" + member(document, "_id") +
                          R"(","cellId":"c1","subCategoryId":"s1","name":"W1","depth":"2.5","insertCount":2,)"
                          R"("lastCount":2,"lastDate":")" +
                          day2 +
                          R"(","isNew":true,"inserted":2,"corrected":0,"unchanged":0,"alarmId":"",)"
                          R"("deliveryId":")" +
                          member(documents(DocumentKind::History).front(), "_id") + R"("}])");
    EXPECT_EQ(samples(), "1.25 1.5");
    EXPECT_EQ(dayValues(), "1.25/1 1.5/1");
    EXPECT_EQ(heldSamples().at(0).timeFlag, "A");
    EXPECT_EQ(heldSamples().at(0).offsetMinutes, -480);
}

TEST_F(DeliveryIntake, DataManageAndHistoryTellOfEachDelivery)
{
    take(delivery({point("W1", {sample(day1, 1, "1"), sample(day2, 2, "2")}, R"(,"fileId":"f1")"),
                   point("W2", {sample(day1, 1, "3")}, R"(,"fileId":"f1")")}));
    take(delivery({point("W1", {sample(day2, 2, "2"), sample(day3, 3, "4")}, R"(,"fileId":"f2")")}));
    const std::string dataManage = documents(DocumentKind::DataManage).at(0);
    EXPECT_EQ(member(dataManage, "projectId"), "p1");
    EXPECT_EQ(member(dataManage, "cellId"), "c1");
    EXPECT_EQ(member(dataManage, "subCategoryId"), "s1");
    EXPECT_EQ(member(dataManage, "lastDate"), day3);
    EXPECT_EQ(member(dataManage, "lastCount"), "2");
    EXPECT_EQ(member(dataManage, "fileId"), "f2");
    EXPECT_EQ(member(dataManage, "createdAt"), "2015-12-21T06:30:01.123Z");
    EXPECT_EQ(member(dataManage, "updatedAt"), "2015-12-21T06:30:02.123Z");
    const std::vector<std::string> history = documents(DocumentKind::History);
    ASSERT_EQ(history.size(), 2U);
    EXPECT_EQ(member(history[0], "dataManageId"), member(dataManage, "_id"));
    EXPECT_EQ(member(history[0], "lastDate"), day2);
    EXPECT_EQ(member(history[0], "lastCount"), "3");
    EXPECT_EQ(member(history[0], "insertCount"), "3");
    EXPECT_EQ(member(history[0], "fileId"), "f1");
    EXPECT_EQ(member(history[1], "lastDate"), day3);
    EXPECT_EQ(member(history[1], "lastCount"), "4");
    EXPECT_EQ(member(history[1], "insertCount"), "1");
    EXPECT_EQ(member(history[1], "fileId"), "f2");
    EXPECT_EQ(member(history[1], "createdBy"), "Ada");
}

TEST_F(DeliveryIntake, OlderDataLeaveTheLatestTimeAsItIs)
{
    take(delivery({point("W1", {sample(day3, 3, "3")})}));
    take(delivery({point("W1", {sample(day1, 1, "1")})}));
    EXPECT_EQ(member(pointDocument("W1"), "lastDate"), day3);
    EXPECT_EQ(member(pointDocument("W1"), "lastCount"), "3");
    EXPECT_EQ(member(pointDocument("W1"), "insertCount"), "2");
    EXPECT_EQ(member(dataManage(), "lastDate"), day3);
    EXPECT_EQ(samples(), "1 3");
}

TEST_F(DeliveryIntake, RepeatedDeliveryChangesNothing)
{
    addGroup("g1", {"W1"}, 0, 0, 0.5);
    const std::string body =
        delivery({point("W1", {sample(day1, 1, "1"), sample(day2, 2, "2", "A")},
                        R"(,"alias":"a","initialValue":1,"fileId":"f1","links":[{"type":"t","rId":"r"}])"),
                  point("W2", {}), point("W3", {sample(day1, 1, "1")}, "", "c2", "s2")});
    ASSERT_EQ(take(body), "changed");
    EXPECT_EQ(documents(DocumentKind::Alarm).size(), 1U);
    const std::vector<std::string> before = everything();
    EXPECT_EQ(take(body), "same");
    EXPECT_EQ(take(body), "same");
    EXPECT_EQ(everything(), before);
}

TEST_F(DeliveryIntake, AnswerTellsWhatBecameOfTheSamplesAndWhichAlarmWasRaised)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    take(delivery({point("W1", {sample(day1, 1, "1"), sample(day2, 2, "2")})}));
    take(delivery({point("W1", {sample(day1, 1, "1"), sample(day2, 2, "2.5"), sample(day3, 3, "9")}),
                   point("W2", {sample(day1, 1, "1"), sample(day1, 1, "1")})}));
    simdjson::dom::parser parser;
    const simdjson::dom::array points = parser.parse(answer);
    const auto told = [&points](std::size_t place) {
        std::string members;
        for (const char* const name : {"isNew", "inserted", "corrected", "unchanged", "alarmId"}) {
            members += (members.empty() ? "" : " ") + simdjson::minify(points.at(place)[name].value());
        }
        return members;
    };
    EXPECT_EQ(told(0), "false 1 1 1 \"" + member(documents(DocumentKind::Alarm).at(0), "_id") + "\"");
    EXPECT_EQ(told(1), "true 1 0 0 \"\"");
    EXPECT_EQ(member(documents(DocumentKind::History).back(), "insertCount"), "2");
    EXPECT_EQ(member(documents(DocumentKind::History).back(), "correctCount"), "1");
}

TEST_F(DeliveryIntake, DepthsThatAreOneNumberAreOnePoint)
{
    take(delivery({point("I1", {sample(day1, 1, "1")}, R"(,"depth":"2.50")"),
                   point("I1", {sample(day2, 2, "2")}, R"(,"depth":"2.5")"),
                   point("I1", {sample(day1, 1, "3")}, R"(,"depth":"2.05")")}));
    take(delivery({point("I1", {sample(day3, 3, "4")}, R"(,"depth":"+02.5")"),
                   point("I1", {sample(day3, 3, "5")}, R"(,"depth":"2.5m")")}));
    std::vector<std::string> held;
    for (const test::HeldPoint& point : points()) {
        held.push_back(point.depth + ":" + std::to_string(point.samples.size()));
    }
    EXPECT_THAT(held, ElementsAre("2.50:3", "2.05:1", "2.5m:1"));
}

TEST_F(DeliveryIntake, SamplesThatAreThereAreCorrectedByWhoMayEdit)
{
    take(delivery({point("W1", {sample(day1, 1, "1"), sample(day2, 2, "2")})}));
    const std::vector<std::string> before = everything();
    lacking = {{Right::Edit, "p1"}};
    for (const std::string& wrong : {sample(day2, 2, "3"), sample(day2, 2, "2", "B")}) {
        EXPECT_THAT(take(delivery({point("W2", {}), point("W1", {sample(day3, 3, "1"), wrong})})),
                    HasSubstr(R"("[1].data[1]": the token may not edit monitorings)"));
        EXPECT_EQ(reason, DeliveryRefusal::Reason::Forbidden);
        EXPECT_EQ(everything(), before);
    }
    EXPECT_EQ(take(delivery({point("W1", {sample(day3, 3, "1"), sample(day2, 2, "2")})})), "changed");
    lacking.clear();
    EXPECT_EQ(take(delivery({point("W1", {sample(day2, 2, "3", "B")})})), "changed");
}

TEST_F(DeliveryIntake, InitialValueBehindReadingsIsChangedByWhoMayEdit)
{
    const auto withInitialValue = [](const char* name, const char* value) {
        return delivery({point(name, {}, std::string(R"(,"initialValue":)") + value)});
    };
    lacking = {{Right::Edit, "p1"}};
    // Before the first reading it adds.
    EXPECT_EQ(take(delivery({point("W1", {})})), "changed");
    EXPECT_EQ(take(withInitialValue("W1", "1")), "changed");
    EXPECT_EQ(take(delivery({point("W2", {sample(day1, 1, "1")})})), "changed");
    const std::vector<std::string> before = everything();
    for (const auto& [name, value] : {std::pair("W1", "2"), std::pair("W2", "1")}) {
        EXPECT_THAT(take(withInitialValue(name, value)),
                    HasSubstr(R"("[0].initialValue": the token may not edit monitorings)"));
        EXPECT_EQ(reason, DeliveryRefusal::Reason::Forbidden);
    }
    EXPECT_EQ(take(withInitialValue("W1", "1")), "same");
    EXPECT_EQ(everything(), before);
    lacking.clear();
    EXPECT_EQ(take(withInitialValue("W2", "1")), "changed");
}

TEST_F(DeliveryIntake, TrailKeepsWhatWasCorrected)
{
    take(delivery({point("I1", {sample(day1, 1, "1"), sample(day2, 2, "2", "A")}, R"(,"depth":"2.5")")}));
    EXPECT_TRUE(documents(DocumentKind::Change).empty());
    take(delivery(
        {point("I1", {sample(day1, 1, "1"), sample(day2, 2, "3")}, R"(,"depth":"2.5","initialValue":0.5)")}));
    const std::vector<std::string> changes = documents(DocumentKind::Change);
    ASSERT_EQ(changes.size(), 2U);
    const std::string id = points().at(0).id;
    for (const std::string& change : changes) {
        EXPECT_EQ(member(change, "subject"), id);
        EXPECT_EQ(member(change, "name"), "I1 @ 2.5");
        EXPECT_EQ(member(change, "category"), "Settlement");
        EXPECT_EQ(member(change, "cellId"), "c1");
        EXPECT_EQ(member(change, "subCategoryId"), "s1");
        EXPECT_EQ(member(change, "createdBy"), "Ada");
        EXPECT_EQ(member(change, "createdAt"), "2015-12-21T06:30:02.123Z");
    }
    EXPECT_EQ(member(changes[0], "action"), "initialValue.changed");
    EXPECT_EQ(member(changes[0], "before"), "null");
    EXPECT_EQ(member(changes[0], "after"), "0.5");
    EXPECT_EQ(member(changes[1], "action"), "sample.corrected");
    EXPECT_EQ(member(changes[1], "before"),
              R"([{"count":2,"time":")" + day2 + R"(","value":2,"timeFlag":"A"}])");
    EXPECT_EQ(member(changes[1], "after"),
              R"([{"count":2,"time":")" + day2 + R"(","value":3,"timeFlag":""}])");
}

TEST_F(DeliveryIntake, TrailOfManyCorrectionsLosesNone)
{
    std::vector<std::string> first;
    std::vector<std::string> second;
    for (int count = 0; count < 2'500; ++count) {
        first.push_back(sample(day1, count, "1"));
        second.push_back(sample(day1, count, "2"));
    }
    take(delivery({point("W1", first)}));
    take(delivery({point("W1", second)}));
    std::vector<std::size_t> sizes;
    simdjson::dom::parser parser;
    for (const std::string& change : documents(DocumentKind::Change)) {
        sizes.push_back(parser.parse(change)["before"].get_array().size());
    }
    EXPECT_THAT(sizes, ElementsAre(1'000, 1'000, 500));
}

TEST_F(DeliveryIntake, AlarmThatIsRaisedIsToBeTold)
{
    addGroup("g1", {"W1"}, 0, 0, 5);
    const auto toBeTold = [this] {
        const std::optional<Notice> notice = store.read()->outbox().nextDue(Channel::Webhook, now + 1);
        return notice ? notice->alarm : "nothing";
    };
    take(delivery({point("W1", {sample(day1, 1, "1")})}));
    EXPECT_EQ(toBeTold(), "nothing");
    take(delivery({point("W1", {sample(day2, 2, "9")})}));
    EXPECT_EQ(toBeTold(), member(documents(DocumentKind::Alarm).at(0), "_id"));
    take(delivery({point("W1", {sample(day2, 2, "2")})}));
    EXPECT_EQ(toBeTold(), "nothing");
}

TEST_F(DeliveryIntake, EarlierDeliveryRepeatedAfterALaterOneChangesNothing)
{
    const std::string first = delivery({point("W1", {sample(day1, 1, "1")}, R"(,"fileId":"week1")")});
    const std::string second = delivery({point("W1", {sample(day2, 2, "2")}, R"(,"fileId":"week2")")});
    take(first);
    take(second);
    const std::vector<std::string> before = everything();
    EXPECT_EQ(take(first), "same");
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(member(pointDocument("W1"), "fileId"), "week2");
}

TEST_F(DeliveryIntake, SameInstantWithAnotherOffsetIsHeldAlready)
{
    take(delivery({point("W1", {sample("2015-12-21T12:00:00-08:00", 1, "1")})}));
    const std::vector<std::string> before = everything();
    EXPECT_EQ(take(delivery({point("W1", {sample("2015-12-21T20:00:00Z", 1, "1")})})), "same");
    EXPECT_EQ(everything(), before);
}

TEST_F(DeliveryIntake, OverlappingDeliveriesAreMerged)
{
    take(delivery({point("W1", {sample(day1, 1, "1"), sample(day2, 2, "2")})}));
    take(delivery({point("W1", {sample(day2, 2, "2"), sample(day2, 3, "2.5"), sample(day3, 4, "3")})}));
    EXPECT_EQ(samples(), "1 2 2.5 3");
    EXPECT_EQ(dayValues(), "1/1 2.5/2 3/1");
    EXPECT_EQ(member(pointDocument("W1"), "insertCount"), "4");
}

TEST_F(DeliveryIntake, AnotherValueIsACorrection)
{
    take(delivery({point("W1", {sample(day1, 1, "1"), sample(day2, 2, "2")})}));
    EXPECT_EQ(take(delivery({point("W1", {sample(day1, 1, "7"), sample(day2, 2, "8")})})), "changed");
    EXPECT_EQ(samples(), "7 8");
    EXPECT_EQ(dayValues(), "7/1 8/1");
    EXPECT_EQ(member(pointDocument("W1"), "insertCount"), "2");
    const std::string history = documents(DocumentKind::History).back();
    EXPECT_EQ(member(history, "insertCount"), "0");
    EXPECT_EQ(member(history, "lastCount"), "2");
}

TEST_F(DeliveryIntake, AnotherTimeFlagIsACorrection)
{
    take(delivery({point("W1", {sample(day1, 1, "1", "A")})}));
    EXPECT_EQ(take(delivery({point("W1", {sample("2015-12-21T20:00:00Z", 1, "1", "B")})})), "changed");
    ASSERT_EQ(heldSamples().size(), 1U);
    EXPECT_EQ(heldSamples()[0].timeFlag, "B");
    EXPECT_EQ(heldSamples()[0].offsetMinutes, -480);
    EXPECT_EQ(points().at(0).days.at(0).offsetMinutes, -480);
}

TEST_F(DeliveryIntake, CorrectionOfAnEarlierSampleOfADayLeavesItsLast)
{
    take(delivery({point("W1", {sample(day1, 1, "1"), sample(day1, 2, "2")})}));
    take(delivery({point("W1", {sample(day1, 1, "9")})}));
    EXPECT_EQ(samples(), "9 2");
    EXPECT_EQ(dayValues(), "2/2");
}

TEST_F(DeliveryIntake, LaterDescriptionWinsAndEmptyMembersStay)
{
    take(delivery({point("W1", {},
                         R"(,"alias":"a","dataType":1,"initialValue":5,"offsetDirection":"x",)"
                         R"("links":[{"type":"t","rId":"r"}])")}));
    EXPECT_EQ(
        take(delivery({point(
            "W1", {}, R"(,"alias":"","dataType":0,"initialValue":0,"offsetDirection":"","links":[])")})),
        "same");
    EXPECT_EQ(take(delivery({point("W1", {},
                                   R"(,"alias":"b","dataType":2,"initialValue":6,"offsetDirection":"y",)"
                                   R"("links":[{"type":"t","rId":"q"}])")})),
              "changed");
    const std::string document = pointDocument("W1");
    EXPECT_EQ(member(document, "alias"), "b");
    EXPECT_EQ(member(document, "dataType"), "2");
    EXPECT_EQ(member(document, "initialValue"), "6");
    EXPECT_EQ(member(document, "offsetDirection"), "y");
    EXPECT_EQ(member(document, "links"), R"([{"type":"t","rId":"q"}])");
}

TEST_F(DeliveryIntake, RelationNamedWithoutIdentifierRemovesTheLinks)
{
    take(delivery({point("W1", {}, R"(,"links":[{"type":"t","rId":"r"}])")}));
    take(delivery({point("W1", {}, R"(,"links":[{"type":"t"}])")}));
    EXPECT_EQ(member(pointDocument("W1"), "links"), "[]");
}

TEST_F(DeliveryIntake, SeveralMonitoringsEachHaveTheirShare)
{
    take(delivery({point("W1", {sample(day1, 1, "1")}), point("W1", {sample(day1, 1, "2")}, "", "c2", "s1"),
                   point("W1", {sample(day1, 1, "3"), sample(day2, 1, "3")}, "", "c1", "s2"),
                   point("W1", {sample(day1, 1, "4")}, "", "d1", "t1")}));
    std::vector<std::string> shares;
    for (const std::string& document : documents(DocumentKind::DataManage)) {
        shares.push_back(member(document, "projectId") + member(document, "cellId") +
                         member(document, "subCategoryId") + member(document, "lastCount"));
    }
    EXPECT_THAT(shares, ::testing::UnorderedElementsAre("p1c1s11", "p1c1s22", "p1c2s11", "p2d1t11"));
    EXPECT_EQ(documents(DocumentKind::History).size(), 4U);
    EXPECT_EQ(points().size(), 4U);
    // Only what a repeated delivery changes is noted.
    take(
        delivery({point("W1", {sample(day1, 1, "1")}), point("W1", {sample(day1, 2, "2")}, "", "c2", "s1")}));
    EXPECT_EQ(documents(DocumentKind::History).size(), 5U);
}

TEST_F(DeliveryIntake, RefusedDeliveryWritesNothing)
{
    take(delivery({point("W1", {sample(day1, 1, "1")}, R"(,"links":[{"type":"t","rId":"r"}])")}));
    const std::vector<std::string> before = everything();
    const std::string good = point("W1", {sample(day2, 2, "2"), sample(day1, 1, "9")});
    const std::string newPoint = point("W9", {sample(day2, 2, "2")});
    struct Refused
    {
        std::string element;
        std::string message;
    };
    const std::vector<Refused> cases{
        {point("W1", {}, "", "nowhere"), R"("[2].cellId": there is no monitoring "nowhere")"},
        {point("W1", {}, "", ""), R"("[2].cellId": there is no monitoring "")"},
        {point("W1", {}, "", "c1", "nothing"),
         R"("[2].subCategoryId": the project has no sub-category "nothing")"},
        {point("W1", {}, "", "c1", "t1"), R"("[2].subCategoryId": the project has no sub-category "t1")"},
        {point("W1", {}, "", "c1", "s3"),
         R"("[2].subCategoryId": the sub-category is of category "Inclinometer", the monitoring of "Settlement")"},
        {point("W2", {}, R"(,"projectId":"p2")"),
         R"("[2].projectId": the monitoring is not of project "p2")"},
        {point("W2", {sample(day1, 1, "x")}), R"("[2].data[0].value" must be a finite number)"},
        {point("W1", {sample(day2, 2, "3")}), R"("[2].data[0]" contradicts "[0].data[0]")"},
    };
    for (const Refused& one : cases) {
        EXPECT_THAT(take(delivery({good, newPoint, one.element})), HasSubstr(one.message));
        EXPECT_EQ(reason, DeliveryRefusal::Reason::Malformed);
        EXPECT_EQ(everything(), before) << one.message;
    }
    EXPECT_EQ(take(delivery({good, newPoint})), "changed");
}

TEST_F(DeliveryIntake, SenderNeedsTheRightToCreate)
{
    const std::vector<std::string> before = everything();
    lacking = {{Right::Create, "p2"}};
    const std::string body =
        delivery({point("W1", {sample(day1, 1, "1")}), point("W1", {sample(day1, 1, "1")}, "", "d1", "t1")});
    EXPECT_THAT(take(body),
                HasSubstr(R"("[1]": the token may not create in monitorings of category "Settlement")"));
    EXPECT_EQ(reason, DeliveryRefusal::Reason::Forbidden);
    EXPECT_EQ(everything(), before);
    // What cannot be read either looks as if it did not exist.
    lacking = {{Right::Create, "p2"}, {Right::Read, "p2"}};
    EXPECT_THAT(take(body), HasSubstr(R"("[1].cellId": there is no monitoring "d1")"));
    EXPECT_EQ(reason, DeliveryRefusal::Reason::Malformed);
    // Who may deliver need not be able to read.
    lacking = {{Right::Read, "p2"}, {Right::Edit, "p1"}, {Right::Edit, "p2"}};
    EXPECT_EQ(take(body), "changed");
}

TEST_F(DeliveryIntake, LinksThatAreThereAreChangedByWhoMayEdit)
{
    lacking = {{Right::Edit, "p1"}};
    const std::string linked =
        delivery({point("W1", {sample(day1, 1, "1")}, R"(,"links":[{"type":"t","rId":"r"}])")});
    const std::string relinked =
        delivery({point("W1", {sample(day2, 2, "1")}, R"(,"links":[{"type":"t","rId":"q"}])")});
    EXPECT_EQ(take(linked), "changed");
    EXPECT_EQ(take(linked), "same");
    const std::vector<std::string> before = everything();
    EXPECT_THAT(take(relinked), HasSubstr(R"("[0].links": the token may not edit)"));
    EXPECT_EQ(reason, DeliveryRefusal::Reason::Forbidden);
    EXPECT_EQ(everything(), before);
    lacking.clear();
    EXPECT_EQ(take(relinked), "changed");
}

TEST_F(DeliveryIntake, EmptyDeliveryIsNothing)
{
    const std::vector<std::string> before = everything();
    EXPECT_EQ(take("[]"), "same");
    EXPECT_EQ(answer, "[]");
    EXPECT_EQ(take("[[],[]]"), "same");
    EXPECT_EQ(everything(), before);
}

TEST_F(DeliveryIntake, PointNamedTwiceIsAnsweredOnce)
{
    take("[[" + point("W1", {sample(day1, 1, "1")}) + "],[" + point("W1", {sample(day2, 1, "1")}) + "," +
         point("W2", {}) + "]]");
    simdjson::dom::parser parser;
    const simdjson::dom::array points = parser.parse(answer);
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(std::string_view(points.at(0)["name"]), "W1");
    EXPECT_EQ(std::int64_t(points.at(0)["insertCount"]), 2);
    EXPECT_EQ(std::string_view(points.at(1)["name"]), "W2");
    EXPECT_EQ(member(pointDocument("W1"), "insertCount"), "2");
}

TEST_F(DeliveryIntake, ClockThatWentBackDoesNotMakeAChangeOlder)
{
    take(delivery({point("W1", {sample(day1, 1, "1")})}));
    const std::string changedAt = member(pointDocument("W1"), "updatedAt");
    now -= 1'000'000;
    take(delivery({point("W1", {sample(day2, 1, "1")})}));
    EXPECT_EQ(member(pointDocument("W1"), "updatedAt"), changedAt);
    EXPECT_EQ(member(dataManage(), "updatedAt"), changedAt);
}

} // namespace
} // namespace monitorservice
