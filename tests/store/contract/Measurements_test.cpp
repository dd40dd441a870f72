#include "StoreContract.h"
#include "store/UtcDay.h"
#include "support/Chance.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <sstream>
#include <utility>

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

constexpr Instant oneDay = 24LL * 3600 * 1000;

std::string textOf(const DaySummary& day)
{
    std::ostringstream text;
    text << day.day << ": " << day.count << ' ' << day.time << ' '
         << (day.offsetMinutes ? std::to_string(*day.offsetMinutes) : "Z") << ' ' << day.value << ", "
         << day.samples;
    return text.str();
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

    // What the session has written is lost, unless it was committed.
    void beginAnew()
    {
        session.reset();
        session = store->write();
    }

    bool insert(const Sample& sample, std::int64_t delivery = 0)
    {
        return measurements().insertSample(point, utcDayOf(sample.time), sample, delivery);
    }

    void replace(const Sample& sample) { measurements().replaceSample(point, utcDayOf(sample.time), sample); }

    void remove(Instant time, std::int32_t count)
    {
        measurements().removeSample(point, utcDayOf(time), time, count);
    }

    std::vector<double> values(Instant from, Instant before)
    {
        std::vector<double> found;
        measurements().visitSamples(point, from, before,
                                    [&](const Sample& sample) { found.push_back(sample.value); });
        return found;
    }

    // "day: count time offset value, number of samples", each.
    std::vector<std::string> days()
    {
        std::vector<std::string> found;
        measurements().visitDays(point, -1000, 1000,
                                 [&found](const DaySummary& one) { found.push_back(textOf(one)); });
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
    ASSERT_TRUE(insert({-5, -7, -480, 0.1, "A"}));
    ASSERT_TRUE(insert({-5, -6, std::nullopt, 1e300, ""}));
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

TEST_P(PointMeasurements, TimesAndCountsReachFromOneEndToTheOther)
{
    using Count = std::numeric_limits<std::int32_t>;
    constexpr Instant beginOfYear0 = -62'167'219'200'000;
    constexpr Instant endOfYear9999 = 253'402'300'799'999;
    insert({beginOfYear0, Count::min(), -840, 1.5, "A"});
    insert({endOfYear9999, Count::max(), 840, 2.5, "B"});
    EXPECT_THAT(values(std::numeric_limits<Instant>::min(), std::numeric_limits<Instant>::max()),
                ElementsAre(1.5, 2.5));
    EXPECT_EQ(measurements().findSample(point, beginOfYear0, Count::min()).value().value, 1.5);
    EXPECT_EQ(measurements().latestSample(point).value().count, Count::max());
    EXPECT_EQ(measurements().latestDayBefore(point, std::numeric_limits<std::int64_t>::max()).value().time,
              endOfYear9999);
    EXPECT_EQ(measurements().earliestDayAfter(point, std::numeric_limits<std::int64_t>::min()).value().time,
              beginOfYear0);
    remove(endOfYear9999, Count::max());
    EXPECT_EQ(measurements().latestSample(point).value().time, beginOfYear0);
}

TEST_P(PointMeasurements, WhatAVisitorThrowsEndsTheVisitAlone)
{
    struct Enough
    {
    };
    const auto enough = [](const auto& /*found*/) {
        throw Enough();
    };
    for (Instant time = 0; time < 3 * oneDay; time += oneDay / 200) {
        insert({time, 1, {}, 1, "A"}, 7);
    }
    const Measurements& held = measurements();
    EXPECT_THROW(held.visitSamples(point, 0, oneDay, enough), Enough);
    EXPECT_THROW(held.visitSamplesOf(point, 7, enough), Enough);
    EXPECT_THROW(held.visitDays(point, 0, 2, enough), Enough);
    EXPECT_THROW(held.visitPoints("c", "s", "W1", enough), Enough);
    EXPECT_THROW(held.visitDeliveredTo("c", "s", 0, enough), Enough);
    insert({3 * oneDay, 1, {}, 1, "A"});
    session->commit();
    beginAnew();
    EXPECT_EQ(days().size(), 4U);
    EXPECT_EQ(values(0, 4 * oneDay).size(), 601U);
}

TEST_P(PointMeasurements, SampleOfTheSameTimeAndCountIsNotInsertedAgain)
{
    ASSERT_TRUE(insert({10, 1, 0, 1.0, "A"}));
    EXPECT_FALSE(insert({10, 1, 0, 2.0, "B"}));
    EXPECT_EQ(measurements().findSample(point, 10, 1)->value, 1.0);
    replace({10, 1, 60, 2.0, "B"});
    EXPECT_EQ(measurements().findSample(point, 10, 1)->value, 2.0);
    EXPECT_EQ(measurements().findSample(point, 10, 1)->timeFlag, "B");
}

TEST_P(PointMeasurements, SamplesComeInTheOrderOfTimeAndCount)
{
    insert({20, 1, 0, 4.0, ""});
    insert({10, 9, 0, 3.0, ""});
    insert({10, -2, 0, 2.0, ""});
    insert({9, 1, 0, 1.0, ""});
    EXPECT_THAT(values(0, 100), ElementsAre(1.0, 2.0, 3.0, 4.0));
    EXPECT_THAT(values(10, 20), ElementsAre(2.0, 3.0));
}

TEST_P(PointMeasurements, DayKeepsItsLastSampleAndCountsAll)
{
    const Instant noon = 7 * oneDay + oneDay / 2;
    insert({noon - 2, 5, 0, 7.0, ""});
    insert({noon - 1, 5, 0, 8.0, ""});
    insert({noon, 1, 60, 1.0, ""});
    EXPECT_THAT(days(), ElementsAre("7: 1 648000000 60 1, 3"));
    insert({noon - 3, 9, 0, 9.0, ""});
    EXPECT_THAT(days(), ElementsAre("7: 1 648000000 60 1, 4"));
    insert({noon, 2, std::nullopt, 2.0, ""});
    EXPECT_THAT(days(), ElementsAre("7: 2 648000000 Z 2, 5"));
    insert({noon, -4, 30, 3.0, ""});
    EXPECT_FALSE(insert({noon, 2, 30, 4.0, ""}));
    EXPECT_THAT(days(), ElementsAre("7: 2 648000000 Z 2, 6"));
}

TEST_P(PointMeasurements, SamplesOfADayInAnyOrderAreOneDay)
{
    insert({-1, 1, 0, 3.0, ""});
    insert({oneDay, 1, 0, 4.0, ""});
    insert({-oneDay, 1, 0, 5.0, ""});
    insert({oneDay - 1, 1, 0, 6.0, ""});
    insert({0, 1, 0, 7.0, ""});
    EXPECT_THAT(days(), ElementsAre("-1: 1 -1 0 3, 2", "0: 1 86399999 0 6, 2", "1: 1 86400000 0 4, 1"));
}

TEST_P(PointMeasurements, CorrectedLastSampleOfADayIsTakenOver)
{
    insert({100, 1, 60, 1.0, ""});
    insert({90, 1, 60, 2.0, ""});
    replace({100, 1, 90, 8.0, ""});
    EXPECT_THAT(days(), ElementsAre("0: 1 100 60 8, 2"));
    replace({90, 1, 60, 3.0, ""});
    replace({100, 1, 60, 9.0, ""});
    replace({100, 2, 60, 10.0, ""});
    EXPECT_THAT(days(), ElementsAre("0: 1 100 60 9, 2")) << "what is not held was taken over";
}

TEST_P(PointMeasurements, DayWithoutItsLastSampleIsThatOfTheOthers)
{
    insert({oneDay, 1, 0, 9.0, ""});
    for (const Instant time : {30, 50, 70, 60}) {
        insert({time, 1, 90, 0.5 * static_cast<double>(time), ""});
    }
    remove(70, 1);
    EXPECT_THAT(days(), ElementsAre("0: 1 60 90 30, 3", "1: 1 86400000 0 9, 1"));
    remove(30, 1);
    remove(30, 2);
    EXPECT_THAT(days(), ElementsAre("0: 1 60 90 30, 2", "1: 1 86400000 0 9, 1"));
    remove(50, 1);
    insert({55, 1, 0, 5.0, ""});
    remove(60, 1);
    EXPECT_THAT(days(), ElementsAre("0: 1 55 0 5, 1", "1: 1 86400000 0 9, 1"));
    remove(55, 1);
    EXPECT_THAT(days(), ElementsAre("1: 1 86400000 0 9, 1")) << "a day without samples stays";
}

TEST_P(PointMeasurements, DaysComeToBeWithTheirSamples)
{
    session->commit();
    beginAnew();
    insert({100, 1, 0, 1.0, ""});
    beginAnew();
    EXPECT_THAT(days(), ElementsAre());
    insert({100, 1, 0, 2.0, ""});
    session->commit();
    beginAnew();
    EXPECT_THAT(days(), ElementsAre("0: 1 100 0 2, 1"));
}

TEST_P(PointMeasurements, LatestDayBeforeADayIsTheNearestThatHasSamples)
{
    for (const std::int64_t number : {-3, 5, 2}) {
        insert({number * oneDay, 1, 0, 1.0, ""});
    }
    EXPECT_EQ(measurements().latestDayBefore(point, 6).value().day, 5);
    EXPECT_EQ(measurements().latestDayBefore(point, 5).value().day, 2);
    EXPECT_EQ(measurements().latestDayBefore(point, 2).value().day, -3);
    EXPECT_FALSE(measurements().latestDayBefore(point, -3));
}

TEST_P(PointMeasurements, EarliestDayAfterADayIsTheNearestThatHasSamples)
{
    for (const std::int64_t day : {3, 7, 9}) {
        insert({day * oneDay, 1, std::nullopt, static_cast<double>(day), ""});
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
        insert({time, count, std::nullopt, 0.5 * count, "A"});
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

TEST_P(PointMeasurements, DepthsAreOrderedByTheNumbersThatTheyBeginWith)
{
    // Rising; those that begin with no number are 0, and so is what is too small for one.
    const std::vector<std::string> depths{"-1e400", "-2.5", "-1e-400", "1e-400",  "nan", "x 5",  ".5",
                                          "0.75 m", " 3",   "+4",      "\\t\\n5", "1e3", "1e400"};
    std::vector<std::string> rising;
    for (const std::string& depth : depths) {
        rising.push_back("i" + std::to_string(rising.size() + 10));
        measurements().insertPoint("p", rising.back(), pointDocument(rising.back(), "I1", depth), 0);
    }
    const Where where = Where::equals("name", "I1");
    DocumentQuery query = everything();
    query.where = &where;
    query.order = {{"depth", false}};
    std::vector<std::string> found;
    measurements().select(query)->visit([&found](const FoundPoint& one) { found.emplace_back(one.id); });
    EXPECT_EQ(found, rising);
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
        failureOf(*session,
                  [this] { measurements().insertPoint("p", "again", pointDocument("again", "W1", ""), 0); }),
        "conflict");
}

TEST_P(PointMeasurements, PointOfAnUnknownMonitoringIsAConflict)
{
    std::string document = pointDocument("w2", "W2", "");
    document.replace(document.find("\"cellId\":\"c\""), 12, "\"cellId\":\"x\"");
    EXPECT_EQ(failureOf(*session, [&] { measurements().insertPoint("p", "w2", document, 0); }), "conflict");
}

TEST_P(PointMeasurements, MonitoringWithPointsIsNotRemoved)
{
    EXPECT_EQ(failureOf(*session, [this] { session->documents(DocumentKind::Cell).remove("p", "c"); }),
              "conflict");
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
        insert({time, count, 60, 0.5 * count, "A"});
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
    insert({20, 1, 0, 4.0, ""}, 3);
    insert({10, 1, 0, 3.0, ""}, 3);
    insert({15, 1, 0, 2.0, ""}, 70'000);
    EXPECT_FALSE(insert({10, 1, 0, 9.0, ""}, 4));
    replace({20, 1, 0, 5.0, ""});
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
        measurements().visitDeliveredTo("c", "s", delivery, [&names, delivery](const DeliveredTo& one) {
            names.push_back(one.point.id + (one.made == delivery ? " made" : ""));
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
    insert({10, 1, 0, 1.0, ""}, 1);
    insert({10, 2, 0, 2.0, ""}, 1);
    remove(10, 1);
    remove(10, 1);
    EXPECT_THAT(values(0, 100), ElementsAre(2.0));
    EXPECT_TRUE(insert({10, 1, 0, 3.0, ""}, 2));
}

TEST_P(PointMeasurements, PointIsRemovedWithItsSamplesAndDays)
{
    const std::int64_t other = measurements().insertPoint("p", "w2", pointDocument("w2", "W2", ""), 0);
    for (const std::int64_t key : {point, other}) {
        measurements().insertSample(key, utcDayOf(10), {10, 1, 0, 1.0, ""}, 0);
    }
    measurements().removePoint(other);
    EXPECT_FALSE(measurements().findPoint("c", "s", "W2", ""));
    EXPECT_FALSE(measurements().findSample(other, 10, 1));
    EXPECT_FALSE(measurements().latestDayBefore(other, 100));
    EXPECT_TRUE(measurements().findSample(point, 10, 1));
    EXPECT_TRUE(measurements().latestDayBefore(point, 100));
}

// Days by what the samples of a model give.
class DaysAndSamples : public PointMeasurements
{
protected:
    using Key = std::pair<Instant, std::int32_t>;
    using Samples = std::map<std::int64_t, std::map<Key, Sample>>; // of each point

    DaysAndSamples()
    {
        for (const std::string name : {"W2", "W3"}) {
            points.push_back(measurements().insertPoint("p", name, pointDocument(name, name, ""), 0));
        }
        session->commit();
        beginAnew();
    }

    // A few samples of one day of a point, as deliveries and their undoing write them.
    void change()
    {
        point = chance.of(points);
        const Instant midnight = (static_cast<Instant>(chance.below(5)) - 2) * oneDay;
        for (std::size_t i = chance.below(6); i > 0; --i) {
            const Instant time = midnight + static_cast<Instant>(chance.below(6)) * oneDay / 6;
            Sample sample{time, static_cast<std::int32_t>(chance.below(2)), std::nullopt,
                          static_cast<double>(chance.below(100)), ""};
            if (chance.once(2)) {
                sample.offsetMinutes = 480;
            }
            changeSample(sample);
        }
    }

    void changeSample(const Sample& sample)
    {
        std::map<Key, Sample>& held = samples[point];
        const Key key{sample.time, sample.count};
        if (chance.once(4)) {
            remove(sample.time, sample.count);
            held.erase(key);
        } else if (chance.once(4)) {
            replace(sample);
            if (const auto found = held.find(key); found != held.end()) {
                found->second.value = sample.value;
            }
        } else {
            EXPECT_EQ(insert(sample), held.try_emplace(key, sample).second);
        }
    }

    void endSession()
    {
        if (chance.once(2)) {
            session->commit();
            committed = samples;
        } else {
            samples = committed;
        }
        beginAnew();
    }

    std::map<std::int64_t, DaySummary> expectedDays()
    {
        std::map<std::int64_t, DaySummary> expected;
        for (const auto& [key, sample] : samples[point]) {
            const std::int64_t number = utcDayOf(sample.time).day;
            expected[number] = {number,       sample.time,
                                sample.count, sample.offsetMinutes,
                                sample.value, expected[number].samples + 1};
        }
        return expected;
    }

    // Whatever tells of days is asked first in its turn.
    void expectDays()
    {
        point = chance.of(points);
        const std::map<std::int64_t, DaySummary> expected = expectedDays();
        switch (chance.below(4)) {
        case 0:
            return expectNeighbours(expected);
        case 1:
            return expectExtremes(expected);
        case 2:
            return expectSelected(expected);
        default:
            std::vector<std::string> texts;
            for (const auto& [number, day] : expected) {
                texts.push_back(textOf(day));
            }
            EXPECT_EQ(days(), texts);
        }
    }

    void expectNeighbours(const std::map<std::int64_t, DaySummary>& expected)
    {
        const auto number = static_cast<std::int64_t>(chance.below(7)) - 3;
        const auto textOrNone = [](const std::optional<DaySummary>& day) {
            return day ? textOf(*day) : std::string("none");
        };
        const auto notBefore = expected.lower_bound(number);
        EXPECT_EQ(textOrNone(measurements().latestDayBefore(point, number)),
                  notBefore == expected.begin() ? "none" : textOf(std::prev(notBefore)->second));
        const auto after = expected.upper_bound(number);
        EXPECT_EQ(textOrNone(measurements().earliestDayAfter(point, number)),
                  after == expected.end() ? "none" : textOf(after->second));
    }

    void expectExtremes(const std::map<std::int64_t, DaySummary>& expected)
    {
        std::optional<double> smallest;
        std::optional<double> largest;
        for (const auto& [number, day] : expected) {
            smallest = std::min(smallest.value_or(day.value), day.value);
            largest = std::max(largest.value_or(day.value), day.value);
        }
        PointSummary summary;
        measurements()
            .select(everything())
            ->visitSummaries(
                [this](const FoundPoint& found) {
                    SummaryParts parts;
                    parts.extremes = found.key == point;
                    return parts;
                },
                [&summary](const PointSummary& one) { summary = one.smallest ? one : summary; });
        EXPECT_EQ(summary.smallest, smallest);
        EXPECT_EQ(summary.largest, largest);
    }

    void expectSelected(const std::map<std::int64_t, DaySummary>& expected)
    {
        std::vector<std::string> found;
        measurements()
            .select(everything())
            ->visitDays([this](const FoundPoint& one) { return one.key == point; },
                        [&found](const DayValue& day) {
                            found.push_back(textOf(
                                DaySummary{day.day, day.time, day.count, day.offsetMinutes, day.value, 0}));
                        });
        std::vector<std::string> texts;
        for (auto [number, day] : expected) {
            day.samples = 0;
            texts.push_back(textOf(day));
        }
        EXPECT_EQ(found, texts);
    }

    Chance chance{20151221};
    std::vector<std::int64_t> points{point};
    Samples samples;
    Samples committed;
};

TEST_P(PointMeasurements, SamplesOfANewPointStayWhenOthersAreRemoved)
{
    EXPECT_TRUE(insert({10, 1, {}, 1.5, "A"}));
    measurements().removeDelivered("c", "none");
    EXPECT_FALSE(insert({10, 1, {}, 2.5, "A"}));
    EXPECT_TRUE(insert({20, 1, {}, 3.5, "A"}));
    EXPECT_THAT(values(0, 100), ElementsAre(1.5, 3.5));
    EXPECT_THAT(days(), ElementsAre("0: 1 20 Z 3.5, 2"));
}

TEST_P(DaysAndSamples, DaysAreWhatTheSamplesGiveAtAnyTime)
{
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        change();
        if (chance.once(3)) {
            expectDays();
        }
        if (chance.once(20)) {
            endSession();
        }
    }
    std::size_t held = 0;
    for (const std::int64_t one : points) {
        held += samples[one].size();
    }
    EXPECT_GT(held, 10U);
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
        measurements().insertSample(key, utcDayOf(10), {10, 1, 0, 1.0, ""}, 0);
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
RK_EVERY_STORE(DaysAndSamples);

} // namespace
} // namespace monitorservice::test
