#include "StoreContract.h"

#include <limits>
#include <map>
#include <random>

namespace monitorservice::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::string pointDocument(const std::string& id, const std::string& name, const std::string& depth,
                          const std::string& lastDate = "")
{
    return R"({"_id":")" + id + R"(","projectId":"p","cellId":"c","subCategoryId":"s","name":")" + name +
           R"(","depth":")" + depth + R"(","lastDate":")" + lastDate + R"("})";
}

// A project with one monitoring, one sub-category and one point.
class PointMeasurements : public StoreContract
{
protected:
    PointMeasurements()
    {
        session->projects().insert({"p", "Pit", "UTC", 1});
        session->categories().add("Settlement");
        session->documents(DocumentKind::Cell)
            .insert("p", "c",
                    R"({"_id":"c","projectId":"p","name":"North","category":"Settlement",)"
                    R"("createdAt":"2026-01-01T00:00:00.000Z","createdBy":"a",)"
                    R"("updatedAt":"2026-01-01T00:00:00.000Z","updatedBy":"a"})");
        session->documents(DocumentKind::SubCategory)
            .insert("p", "s",
                    R"({"_id":"s","projectId":"p","name":"Level","category":"Settlement","alias":"L"})");
        point = measurements().insertPoint("p", "w1", pointDocument("w1", "W1", ""), 0);
    }

    Measurements& measurements() { return session->measurements(); }

    std::vector<double> values(Instant from, Instant before)
    {
        std::vector<double> found;
        measurements().visitSamples(point, from, before,
                                    [&](const Sample& sample) { found.push_back(sample.value); });
        return found;
    }

    DaySummary day(std::int64_t number)
    {
        DaySummary found;
        measurements().visitDays(point, number, number, [&](const DaySummary& one) { found = one; });
        return found;
    }

    static DocumentQuery everything()
    {
        DocumentQuery query;
        query.project = "p";
        return query;
    }

    std::string documentOf(const std::string& id)
    {
        return session->documents(DocumentKind::PointLocation).find(id).value().text;
    }

    std::unique_ptr<Session> session = store->write();
    std::int64_t point = 0;
};

TEST_P(PointMeasurements, SampleComesBackAsItWasWritten)
{
    ASSERT_TRUE(measurements().insertSample(point, {-5, -7, -480, 0.1, "A"}, 0));
    ASSERT_TRUE(measurements().insertSample(point, {-5, -6, std::nullopt, 1e300, ""}, 0));
    const auto first = measurements().findSample(point, -5, -7);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->offsetMinutes, -480);
    EXPECT_EQ(first->value, 0.1);
    EXPECT_EQ(first->timeFlag, "A");
    const auto second = measurements().findSample(point, -5, -6);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->offsetMinutes, std::nullopt);
    EXPECT_EQ(second->value, 1e300);
    EXPECT_FALSE(measurements().findSample(point, -4, -7));
}

TEST_P(PointMeasurements, SampleOfTheSameTimeAndCountIsNotInsertedAgain)
{
    ASSERT_TRUE(measurements().insertSample(point, {10, 1, 0, 1.0, "A"}, 0));
    EXPECT_FALSE(measurements().insertSample(point, {10, 1, 0, 2.0, "B"}, 0));
    EXPECT_EQ(measurements().findSample(point, 10, 1)->value, 1.0);
    measurements().replaceSample(point, {10, 1, 60, 2.0, "B"});
    EXPECT_EQ(measurements().findSample(point, 10, 1)->value, 2.0);
    EXPECT_EQ(measurements().findSample(point, 10, 1)->timeFlag, "B");
}

TEST_P(PointMeasurements, SamplesComeInTheOrderOfTimeAndCount)
{
    measurements().insertSample(point, {20, 1, 0, 4.0, ""}, 0);
    measurements().insertSample(point, {10, 9, 0, 3.0, ""}, 0);
    measurements().insertSample(point, {10, -2, 0, 2.0, ""}, 0);
    measurements().insertSample(point, {9, 1, 0, 1.0, ""}, 0);
    EXPECT_THAT(values(0, 100), ElementsAre(1.0, 2.0, 3.0, 4.0));
    EXPECT_THAT(values(10, 20), ElementsAre(2.0, 3.0));
}

TEST_P(PointMeasurements, DayKeepsItsLastSampleAndCountsAll)
{
    measurements().addToDay(point, {7, 100, 1, 60, 1.0, 3});
    measurements().addToDay(point, {7, 90, 5, 0, 9.0, 2});
    EXPECT_EQ(day(7).value, 1.0);
    EXPECT_EQ(day(7).offsetMinutes, 60);
    EXPECT_EQ(day(7).samples, 5);
    measurements().addToDay(point, {7, 100, 2, std::nullopt, 2.0, 1});
    EXPECT_EQ(day(7).value, 2.0);
    EXPECT_EQ(day(7).count, 2);
    EXPECT_EQ(day(7).samples, 6);
}

TEST_P(PointMeasurements, CorrectedLastSampleOfADayIsTakenOver)
{
    measurements().addToDay(point, {7, 100, 1, 60, 1.0, 3});
    measurements().addToDay(point, {7, 100, 1, 60, 8.0, 0});
    EXPECT_EQ(day(7).value, 8.0);
    EXPECT_EQ(day(7).samples, 3);
}

TEST_P(PointMeasurements, LatestDayBeforeADayIsTheNearestThatHasSamples)
{
    for (const std::int64_t number : {-3, 5, 2}) {
        measurements().addToDay(point, {number, number, 1, 0, 1.0, 1});
    }
    EXPECT_EQ(measurements().latestDayBefore(point, 6).value().day, 5);
    EXPECT_EQ(measurements().latestDayBefore(point, 5).value().day, 2);
    EXPECT_EQ(measurements().latestDayBefore(point, 2).value().day, -3);
    EXPECT_FALSE(measurements().latestDayBefore(point, -3));
}

TEST_P(PointMeasurements, EarliestDayAfterADayIsTheNearestThatHasSamples)
{
    for (const std::int64_t day : {3, 7, 9}) {
        measurements().addToDay(point, {day, day, 1, std::nullopt, static_cast<double>(day), 1});
    }
    EXPECT_EQ(measurements().earliestDayAfter(point, 3)->day, 7);
    EXPECT_EQ(measurements().earliestDayAfter(point, 7)->value, 9);
    EXPECT_EQ(measurements().earliestDayAfter(point, -100)->day, 3);
    EXPECT_FALSE(measurements().earliestDayAfter(point, 9));
}

TEST_P(PointMeasurements, EarliestSampleIsTheFirstByTimeAndCount)
{
    EXPECT_FALSE(measurements().earliestSample(point));
    for (const auto& [time, count] : {std::pair(20, 1), std::pair(10, 7), std::pair(10, -3)}) {
        measurements().insertSample(point, {time, count, std::nullopt, 0.5 * count, "A"}, 0);
    }
    const std::optional<Sample> earliest = measurements().earliestSample(point);
    ASSERT_TRUE(earliest);
    EXPECT_EQ(earliest->time, 10);
    EXPECT_EQ(earliest->count, -3);
    EXPECT_EQ(earliest->value, -1.5);
    EXPECT_EQ(earliest->timeFlag, "A");
}

TEST_P(PointMeasurements, DepthIsFoundHoweverItsNumberIsSpelt)
{
    const auto insert = [this](const std::string& id, const std::string& depth) {
        measurements().insertPoint("p", id, pointDocument(id, "I1", depth), 0);
    };
    insert("a", "2.50");
    insert("b", "2.500001");
    insert("c", "top");
    insert("d", "0");
    insert("e", "");
    // The same as "2.50" in numbers of 64 bits, and another depth still.
    insert("f", "2.5000000000000000000001");
    const auto found = [this](const std::string& depth) {
        const auto stored = measurements().findPoint("c", "s", "I1", depth);
        return stored ? stored->id : std::string("none");
    };
    for (const char* const depth : {"2.5", "2.50", "+2.5", "02.500"}) {
        EXPECT_EQ(found(depth), "a") << depth;
    }
    EXPECT_EQ(found("2.5000010"), "b");
    EXPECT_EQ(found("top"), "c");
    EXPECT_EQ(found("-0.0"), "d");
    EXPECT_EQ(found(""), "e");
    EXPECT_EQ(found("2.50000000000000000000010"), "f");
    for (const char* const depth : {"bottom", "2.5m", " 2.5", "3"}) {
        EXPECT_EQ(found(depth), "none") << depth;
    }
}

TEST_P(PointMeasurements, PointIsFoundByMonitoringSubCategoryNameAndDepth)
{
    const std::int64_t deep =
        measurements().insertPoint("p", "w1deep", pointDocument("w1deep", "W1", "20"), 0);
    ASSERT_TRUE(measurements().findPoint("c", "s", "W1", "20"));
    EXPECT_EQ(measurements().findPoint("c", "s", "W1", "20")->key, deep);
    EXPECT_EQ(measurements().findPoint("c", "s", "W1", "")->key, point);
    EXPECT_FALSE(measurements().findPoint("c", "s", "w1", ""));
    std::vector<std::string> ids;
    measurements().visitPoints("c", "s", "W1", [&](const StoredPoint& one) { ids.push_back(one.id); });
    EXPECT_THAT(ids, ElementsAre("w1", "w1deep"));
    EXPECT_THROW(measurements().insertPoint("p", "again", pointDocument("again", "W1", "20"), 0), StoreError);
}

TEST_P(PointMeasurements, PointsOrderByTheirLatestTimeWhateverItsOffset)
{
    measurements().replacePoint(point, pointDocument("w1", "W1", "", "2015-12-20T20:00:00.500-08:00"),
                                Instant{1450670400500}, std::nullopt);
    measurements().insertPoint("p", "w2", pointDocument("w2", "W2", "", "2015-12-21T04:00:00.499Z"), 0);
    measurements().insertPoint("p", "w3", pointDocument("w3", "W3", ""), 0);
    DocumentQuery query;
    query.project = "p";
    query.order = parseOrder("-data.time");
    query.limit = 10;
    std::vector<std::string> ids;
    session->documents(DocumentKind::PointLocation).visit(query, [&](std::string_view document) {
        ids.emplace_back(document.substr(8, 2));
    });
    EXPECT_THAT(ids, ElementsAre("w1", "w2", "w3"));
}

TEST_P(PointMeasurements, CategoryOfAPointIsThatOfItsMonitoring)
{
    const Where where = Where::parse(R"({"category":"Settlement","name":{"$regex":"w","$options":"i"}})");
    DocumentQuery query;
    query.project = "p";
    query.where = &where;
    EXPECT_EQ(session->documents(DocumentKind::PointLocation).count(query), 1U);
    EXPECT_EQ(session->documents(DocumentKind::PointLocation).find("w1")->category, "Settlement");
    query.parent = "another";
    EXPECT_EQ(session->documents(DocumentKind::PointLocation).count(query), 0U);
}

TEST_P(PointMeasurements, PointOfAKnownNameAndDepthIsAConflict)
{
    EXPECT_EQ(
        failureOf([this] { measurements().insertPoint("p", "again", pointDocument("again", "W1", ""), 0); }),
        "conflict");
}

TEST_P(PointMeasurements, PointOfAnUnknownMonitoringIsAConflict)
{
    std::string document = pointDocument("w2", "W2", "");
    document.replace(document.find("\"cellId\":\"c\""), 12, "\"cellId\":\"x\"");
    EXPECT_EQ(failureOf([&] { measurements().insertPoint("p", "w2", document, 0); }), "conflict");
}

TEST_P(PointMeasurements, MonitoringWithPointsIsNotRemoved)
{
    EXPECT_EQ(failureOf([this] { session->documents(DocumentKind::Cell).remove("p", "c"); }), "conflict");
}

TEST_P(PointMeasurements, LinksAreReplacedOnceAndNeverBeforeTheLastChange)
{
    const std::string held = R"({"_id":"w2","projectId":"p","cellId":"c","subCategoryId":"s","name":"W2",)"
                             R"("depth":"","lastDate":"","links":[],"updatedAt":"2015-12-21T00:00:00.000Z",)"
                             R"("updatedBy":"a"})";
    const std::int64_t key = measurements().insertPoint("p", "w2", held, 0);
    const std::string links = R"([{"type":"model","rId":"m2"}])";
    EXPECT_TRUE(measurements().replaceLinks(key, links, 1500000000000, "Ada"));
    EXPECT_FALSE(measurements().replaceLinks(key, links, 1600000000000, "Bob"));
    EXPECT_THAT(documentOf("w2"),
                AllOf(HasSubstr(R"("updatedAt":"2017-07-14T02:40:00.000Z","updatedBy":"Ada")"),
                      HasSubstr(R"("links":[{"type":"model","rId":"m2"}])")));
    EXPECT_TRUE(measurements().replaceLinks(key, "[]", 1400000000000, "Bob"));
    EXPECT_THAT(documentOf("w2"), HasSubstr(R"("updatedAt":"2017-07-14T02:40:00.000Z","updatedBy":"Bob")"));
}

TEST_P(PointMeasurements, LatestSampleIsTheLastByTimeAndCount)
{
    EXPECT_FALSE(measurements().latestSample(point));
    for (const auto& [time, count] : {std::pair(10, 7), std::pair(20, -3), std::pair(20, -9)}) {
        measurements().insertSample(point, {time, count, 60, 0.5 * count, "A"}, 0);
    }
    const std::optional<Sample> latest = measurements().latestSample(point);
    ASSERT_TRUE(latest);
    EXPECT_EQ(latest->time, 20);
    EXPECT_EQ(latest->count, -3);
    EXPECT_EQ(latest->offsetMinutes, 60);
}

TEST_P(PointMeasurements, SamplesAreFoundByTheDeliveryThatInsertedThem)
{
    const auto valuesOf = [this](std::int64_t delivery) {
        std::vector<double> values;
        measurements().visitSamplesOf(point, delivery,
                                      [&values](const Sample& sample) { values.push_back(sample.value); });
        return values;
    };
    measurements().insertSample(point, {20, 1, 0, 4.0, ""}, 3);
    measurements().insertSample(point, {10, 1, 0, 3.0, ""}, 3);
    measurements().insertSample(point, {15, 1, 0, 2.0, ""}, 70'000);
    EXPECT_FALSE(measurements().insertSample(point, {10, 1, 0, 9.0, ""}, 4));
    measurements().replaceSample(point, {20, 1, 0, 5.0, ""});
    EXPECT_THAT(valuesOf(3), ElementsAre(3.0, 5.0));
    EXPECT_THAT(valuesOf(70'000), ElementsAre(2.0));
    EXPECT_THAT(valuesOf(4), ElementsAre());
    // 0: no delivery has made the point.
    EXPECT_THAT(measurements().deliveriesOf(point), ElementsAre(70'000, 3, 0));
}

TEST_P(PointMeasurements, PointsAreFoundByTheDeliveriesThatChangedThem)
{
    const std::int64_t second = measurements().insertPoint("p", "w2", pointDocument("w2", "W2", ""), 4);
    const auto found = [this](std::int64_t delivery) {
        std::vector<std::string> names;
        measurements().visitDeliveredTo("c", "s", delivery, [&names](const DeliveredTo& one) {
            names.push_back(one.point.id + (one.isMade ? " made" : ""));
        });
        return names;
    };
    EXPECT_THAT(found(4), ElementsAre("w2 made"));
    EXPECT_THAT(found(5), ElementsAre());
    measurements().replacePoint(point, pointDocument("w1", "W1", ""), std::nullopt, 5);
    EXPECT_THAT(found(4), ElementsAre("w1", "w2 made"));
    EXPECT_THAT(found(5), ElementsAre("w1"));
    measurements().replacePoint(second, pointDocument("w2", "W2", ""), std::nullopt, std::nullopt);
    EXPECT_THAT(found(4), ElementsAre("w1", "w2 made"));
    measurements().replacePoint(point, pointDocument("w1", "W1", ""), std::nullopt, 3);
    EXPECT_THAT(found(4), ElementsAre("w2 made"));
    EXPECT_THAT(measurements().deliveriesOf(second), ElementsAre(4));
}

TEST_P(PointMeasurements, LatestPointIsThatWithTheLatestSample)
{
    EXPECT_FALSE(measurements().latestPoint("c", "s"));
    measurements().insertPoint("p", "w2", pointDocument("w2", "W2", "", "2015-12-21T04:00:00.500Z"), 0);
    measurements().insertPoint("p", "w3", pointDocument("w3", "W3", "", "2015-12-20T20:00:00.501-08:00"), 0);
    EXPECT_EQ(measurements().latestPoint("c", "s").value().id, "w3");
    EXPECT_FALSE(measurements().latestPoint("c", "t"));
}

TEST_P(PointMeasurements, SampleIsRemovedAlone)
{
    measurements().insertSample(point, {10, 1, 0, 1.0, ""}, 1);
    measurements().insertSample(point, {10, 2, 0, 2.0, ""}, 1);
    measurements().removeSample(point, 10, 1);
    measurements().removeSample(point, 10, 1);
    EXPECT_THAT(values(0, 100), ElementsAre(2.0));
    EXPECT_TRUE(measurements().insertSample(point, {10, 1, 0, 3.0, ""}, 2));
}

TEST_P(PointMeasurements, DayIsRecountedFromItsSamples)
{
    measurements().addToDay(point, {7, 100, 1, 60, 1.0, 3});
    measurements().insertSample(point, {99, 9, 0, 9.0, ""}, 0);
    measurements().insertSample(point, {50, 1, std::nullopt, 5.0, ""}, 0);
    measurements().insertSample(point, {50, 2, 90, 6.0, ""}, 0);
    measurements().recountDay(point, 7, 50, 99);
    EXPECT_EQ(day(7).time, 50);
    EXPECT_EQ(day(7).count, 2);
    EXPECT_EQ(day(7).offsetMinutes, 90);
    EXPECT_EQ(day(7).value, 6.0);
    EXPECT_EQ(day(7).samples, 2);
    measurements().recountDay(point, 7, 51, 99);
    EXPECT_FALSE(measurements().latestDayBefore(point, 100)) << "a day without samples stays";
}

TEST_P(PointMeasurements, PointIsRemovedWithItsSamplesAndDays)
{
    const std::int64_t other = measurements().insertPoint("p", "w2", pointDocument("w2", "W2", ""), 0);
    for (const std::int64_t key : {point, other}) {
        measurements().insertSample(key, {10, 1, 0, 1.0, ""}, 0);
        measurements().addToDay(key, {0, 10, 1, 0, 1.0, 1});
    }
    measurements().removePoint(other);
    EXPECT_FALSE(measurements().findPoint("c", "s", "W2", ""));
    EXPECT_FALSE(measurements().findSample(other, 10, 1));
    EXPECT_FALSE(measurements().latestDayBefore(other, 100));
    EXPECT_TRUE(measurements().findSample(point, 10, 1));
    EXPECT_TRUE(measurements().latestDayBefore(point, 100));
}

// What is kept of each day, recomputed from the samples alone.
TEST_P(PointMeasurements, DaysAreWhatTheSamplesGive)
{
    constexpr Instant hour = 3600 * 1000;
    std::mt19937 random(20151221);
    const auto below = [&random](int end) {
        return static_cast<int>(random() % static_cast<unsigned>(end));
    };
    for (int round = 0; round < 60; ++round) {
        for (int i = below(10); i >= 0; --i) {
            const Instant time = below(24 * 12) * hour;
            const Sample sample{time, below(3), below(2) == 0 ? std::nullopt : std::optional(-480),
                                static_cast<double>(below(1000)), ""};
            const bool isNew = measurements().insertSample(point, sample, 0);
            if (!isNew) {
                measurements().replaceSample(point, sample);
            }
            const Sample held = measurements().findSample(point, sample.time, sample.count).value();
            const std::int64_t number = time / (24 * hour);
            measurements().addToDay(
                point, {number, held.time, held.count, held.offsetMinutes, held.value, isNew ? 1 : 0});
        }
        std::map<std::int64_t, DaySummary> expected;
        measurements().visitSamples(point, 0, 1000 * hour, [&expected](const Sample& sample) {
            DaySummary& day = expected[sample.time / (24 * hour)];
            day = {sample.time / (24 * hour), sample.time,  sample.count,
                   sample.offsetMinutes,      sample.value, day.samples + 1};
        });
        std::map<std::int64_t, DaySummary> kept;
        measurements().visitDays(point, -1000, 1000, [&kept](const DaySummary& day) {
            EXPECT_TRUE(kept.empty() || kept.rbegin()->first < day.day);
            kept[day.day] = day;
        });
        ASSERT_EQ(kept.size(), expected.size());
        for (const auto& [number, day] : expected) {
            SCOPED_TRACE(number);
            EXPECT_EQ(kept[number].time, day.time);
            EXPECT_EQ(kept[number].count, day.count);
            EXPECT_EQ(kept[number].offsetMinutes, day.offsetMinutes);
            EXPECT_EQ(kept[number].value, day.value);
            EXPECT_EQ(kept[number].samples, day.samples);
        }
    }
}

// All that was delivered for c and s goes; another sub-category, other monitorings and the groups stay.
TEST_P(PointMeasurements, WhatWasDeliveredIsRemovedTogether)
{
    session->documents(DocumentKind::SubCategory)
        .insert("p", "s2",
                R"({"_id":"s2","projectId":"p","name":"Tilt","category":"Settlement","alias":""})");
    for (const std::string sub : {"s", "s2"}) {
        const std::string refers = R"(,"projectId":"p","cellId":"c","subCategoryId":")" + sub + "\"";
        const std::string times =
            R"(,"createdAt":"2015-12-21T00:00:00.000Z","updatedAt":"2015-12-21T00:00:00.000Z")";
        const auto insert = [&](DocumentKind kind, const std::string& id, const std::string& members) {
            session->documents(kind).insert("p", id + sub, R"({"_id":")" + id + sub + "\"" + members + "}");
        };
        insert(DocumentKind::Group, "g", refers + R"(,"groupName":"G")");
        insert(DocumentKind::DataManage, "d", refers + times);
        insert(DocumentKind::History, "h", R"(,"dataManageId":"d)" + sub + "\"");
        insert(DocumentKind::Alarm, "a", refers + times);
        insert(DocumentKind::AlarmDetail, "e", R"(,"alarmManId":"a)" + sub + R"(","pointName":"W")");
        insert(DocumentKind::AlarmDepth, "f", R"(,"detailId":"e)" + sub + R"(","depth":"1")");
    }
    std::string other = pointDocument("w2", "W1", "");
    other.replace(other.find("\"subCategoryId\":\"s\""), 19, "\"subCategoryId\":\"s2\"");
    const std::int64_t stays = measurements().insertPoint("p", "w2", other, 0);
    for (const std::int64_t key : {point, stays}) {
        measurements().insertSample(key, {10, 1, 0, 1.0, ""}, 0);
        measurements().addToDay(key, {0, 10, 1, 0, 1.0, 1});
    }
    measurements().removeDelivered("c", "s");
    EXPECT_FALSE(measurements().findPoint("c", "s", "W1", ""));
    EXPECT_FALSE(measurements().findSample(point, 10, 1));
    EXPECT_FALSE(measurements().latestDayBefore(point, 1));
    EXPECT_TRUE(measurements().findSample(stays, 10, 1));
    EXPECT_TRUE(measurements().latestDayBefore(stays, 1));
    for (const DocumentKind kind :
         {DocumentKind::PointLocation, DocumentKind::DataManage, DocumentKind::History, DocumentKind::Alarm,
          DocumentKind::AlarmDetail, DocumentKind::AlarmDepth}) {
        EXPECT_EQ(session->documents(kind).count(everything()), 1U) << static_cast<int>(kind);
    }
    EXPECT_EQ(session->documents(DocumentKind::Group).count(everything()), 2U);
    EXPECT_EQ(session->documents(DocumentKind::Cell).count(everything()), 1U);
    EXPECT_EQ(session->documents(DocumentKind::SubCategory).count(everything()), 2U);
}

RK_EVERY_STORE(PointMeasurements);

} // namespace
} // namespace monitorservice::test
