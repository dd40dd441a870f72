#include "import/Deliveries.h"

#include "Text.h"

#include <gmock/gmock.h>

namespace {

const QByteArray header = "name,depth,time,count,value\n";

PlacedFile placed(const char* path, const char* cell, const char* subCategory, const QByteArray& rows)
{
    const MeasuredFile file = readMeasuredFile(QString::fromUtf8(path), header + rows, {});
    EXPECT_TRUE(file.problems.isEmpty());
    return {file, {QString::fromUtf8(cell), QString::fromUtf8(subCategory)}};
}

const QByteArray twoDays = "W1,20,2015-12-18T00:00:00-08:00,1,0.1\n"
                           "W2,20,2015-12-18T12:00:00-08:00,1,0.5\n"
                           "W1,20,2015-12-18T23:45:00-08:00,2,0.2\n"
                           "W1,20,2015-12-19T00:00:00-08:00,3,0.3\n";

} // namespace

TEST(Deliveries, OnePerFile)
{
    const QList<Delivery> deliveries = deliveriesOf({placed("a", "c", "s", twoDays)}, {});
    ASSERT_EQ(deliveries.size(), 1);
    EXPECT_EQ(deliveries[0].sampleCount, 4);
    ASSERT_EQ(deliveries[0].points.size(), 2);
    const RKPointLocation& point = deliveries[0].points[0];
    EXPECT_EQ(point.cellId, "c"_q);
    EXPECT_EQ(point.subCategoryId, "s"_q);
    EXPECT_EQ(point.name, "W1"_q);
    EXPECT_EQ(point.depth, "20"_q);
    EXPECT_EQ(point.initialValue, 0.1);
    EXPECT_EQ(point.data.size(), 3);
    EXPECT_EQ(point.insertCount, 3);
    EXPECT_EQ(point.lastCount, 3);
    EXPECT_EQ(point.lastDate, point.data.last().time);
}

TEST(Deliveries, OldestFirst)
{
    const QList<Delivery> deliveries =
        deliveriesOf({placed("new", "c", "s", "W1,,2015-12-25T00:00:00Z,2,0.2\n"),
                      placed("old", "c", "s", "W1,,2015-12-18T00:00:00Z,1,0.1\n")},
                     {});
    ASSERT_EQ(deliveries.size(), 2);
    EXPECT_EQ(deliveries[0].path, "old"_q);
    EXPECT_EQ(deliveries[1].path, "new"_q);
    EXPECT_EQ(deliveries[1].points[0].initialValue, 0.1);
}

TEST(Deliveries, LeaveTheInitialValueOfKnownPointsAlone)
{
    const QList<Delivery> deliveries =
        deliveriesOf({placed("a", "c", "s", twoDays)}, {{{"c"_q, "s"_q}, "W1"_q, "20"_q}});
    EXPECT_EQ(deliveries[0].points[0].initialValue, 0.0);
    EXPECT_EQ(deliveries[0].points[1].initialValue, 0.5);
}

TEST(Deliveries, LargeOnesAreSplitInTime)
{
    const QList<Delivery> deliveries = deliveriesOf({placed("a", "c", "s", twoDays)}, {}, 3);
    ASSERT_EQ(deliveries.size(), 2);
    EXPECT_EQ(deliveries[0].sampleCount, 3);
    EXPECT_EQ(deliveries[1].sampleCount, 1);
    EXPECT_EQ(deliveries[1].points[0].data[0].count, 3);
}

TEST(Deliveries, NoneForAFileWithoutRows)
{
    EXPECT_TRUE(deliveriesOf({placed("a", "c", "s", "")}, {}).isEmpty());
}

TEST(Deliveries, RequestsAreBoundedAndNeverHoldAMonitoringTwice)
{
    const auto delivery = [](const char* cell, int samples, const char* subCategory = "s") {
        Delivery made;
        made.target = {QString::fromUtf8(cell), QString::fromUtf8(subCategory)};
        made.sampleCount = samples;
        return made;
    };
    const QList<QList<Delivery>> requests = requestsOf(
        {delivery("a", 40), delivery("b", 60), delivery("c", 1), delivery("c", 1, "t"), delivery("d", 150)},
        100);
    ASSERT_EQ(requests.size(), 4);
    EXPECT_EQ(requests[0].size(), 2); // a and b fill it
    EXPECT_EQ(requests[1].size(), 1); // c
    EXPECT_EQ(requests[2].size(), 1); // c again, though another sub-category
    EXPECT_EQ(requests[3].size(), 1); // one that is larger goes alone
}

TEST(Deliveries, ContradictionsBetweenFilesOfOneTarget)
{
    const QByteArray row = "W1,20,2015-12-18T00:00:00Z,1,0.1\n";
    const QByteArray other = "W2,20,2015-12-18T00:00:00Z,1,0.1\nW1,20,2015-12-18T00:00:00Z,1,0.2\n";
    EXPECT_EQ(contradictions({placed("a", "c", "s", row), placed("b", "c", "s", other)}),
              QStringList{"b:3: W1 at depth 20 has another value on line 2 of a for the same time and count "
                          "(0.1 there, 0.2 here)"_q});
    EXPECT_TRUE(contradictions({placed("a", "c", "s", row), placed("b", "c", "s", row)}).isEmpty());
    EXPECT_TRUE(contradictions({placed("a", "c", "s", row), placed("b", "d", "s", other)}).isEmpty());
}

TEST(Deliveries, PointsOfSeveralFilesCountOnce)
{
    EXPECT_EQ(pointsOf({placed("a", "c", "s", twoDays), placed("b", "c", "s", twoDays)}).size(), 2);
    EXPECT_EQ(pointsOf({placed("a", "c", "s", twoDays), placed("b", "c", "t", twoDays)}).size(), 4);
}
