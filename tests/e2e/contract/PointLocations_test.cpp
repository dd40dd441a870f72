#include "Contract.h"

// Points with their samples are delivered, found and linked to other things.

namespace {

class PointLocationContract : public Contract
{
protected:
    PointLocationContract() : cellId(created("VH"_q).id) {}

    QList<RKPointLocation> found(RKPointLocationCondition condition)
    {
        QList<RKPointLocation> points;
        EXPECT_TRUE(data.getPointLocation(condition, points, false)) << lastErrorText();
        return points;
    }

    RKPointLocation newest(RKPointLocationCondition condition)
    {
        RKPointLocation point;
        EXPECT_TRUE(data.getPointLocationByTimeOrder(condition, point)) << lastErrorText();
        return point;
    }

    RKPointLocation measured(const QString& name, const QList<RKPointLocationData>& samples)
    {
        RKPointLocation measured = point(cellId, name);
        measured.data = samples;
        return measured;
    }

    QString cellId;
};

// Identifiers of relations that no other run has.
QMap<QString, QStringList> linksOf(const QString& run)
{
    return {{"model"_q, {run + " m \"1\" & more"_q, run + "-m2"_q}}, {"photo"_q, {run + "-p"_q}}};
}

} // namespace

TEST_F(PointLocationContract, WhatIsDeliveredComesBack)
{
    RKPointLocation written = point(cellId, "测点 \"1\" & more"_q, "2.50"_q);
    written.alias = "one"_q;
    written.dataType = 3;
    written.initialValue = 4;
    written.offsetDirection = "N 45°"_q;
    written.fileId = "week 1.csv"_q;
    written.links = linksOf(deployment().run);
    written.data = {sample(1, december(18), 0.1 + 0.2, "A"_q),
                    sample(2, december(18, 5), -12.345678901234567), sample(3, december(19), 1e-300, "B"_q)};
    deliver({written});

    const QList<RKPointLocation> points = pointsOf(cellId);
    ASSERT_EQ(points.size(), 1);
    const RKPointLocation& read = points.first();
    EXPECT_EQ(read.id.size(), 24);
    EXPECT_EQ(read.cellId, cellId);
    EXPECT_EQ(read.name, written.name);
    EXPECT_EQ(read.category, category());
    EXPECT_EQ(read.dataType, 3);
    EXPECT_EQ(read.initialValue, 4.0);
    EXPECT_EQ(read.offsetDirection, written.offsetDirection);
    EXPECT_EQ(read.depth, "2.50"_q);
    EXPECT_EQ(read.insertCount, 3);
    EXPECT_EQ(read.lastCount, 3);
    EXPECT_EQ(read.lastDate, december(19));
    EXPECT_EQ(read.data, written.data);
    EXPECT_EQ(read.links, written.links);
    EXPECT_TRUE(read.createdAt.isValid());
    EXPECT_FALSE(read.createdBy.isEmpty());

    // Written, and never read by the library.
    const QJsonObject document = Contract::document("pointLocations/"_q + read.id);
    EXPECT_EQ(document.value("subCategoryId"_q).toString(), written.subCategoryId);
    EXPECT_EQ(document.value("alias"_q).toString(), "one"_q);
    EXPECT_EQ(document.value("fileId"_q).toString(), "week 1.csv"_q);
}

TEST_F(PointLocationContract, OffsetsOfTimesAreKept)
{
    const QDateTime there(QDate(2015, 12, 18), QTime(23, 45), Qt::OffsetFromUTC, -8 * 3600);
    deliver({measured("S1"_q, {sample(1, there, 1)})});
    const QList<RKPointLocation> points = pointsOf(cellId);
    ASSERT_EQ(points.size(), 1);
    ASSERT_EQ(points.first().data.size(), 1);
    const QDateTime read = points.first().data.first().time;
    EXPECT_EQ(read, there);
    EXPECT_EQ(read.offsetFromUtc(), -8 * 3600);
    EXPECT_EQ(read.date(), there.date());
}

TEST_F(PointLocationContract, OnePointByItsIdentifier)
{
    RKPointLocation written = measured("S1"_q, {sample(1, december(18), 1), sample(2, december(19), 2)});
    written.links = linksOf(deployment().run);
    deliver({measured("S0"_q, {sample(1, december(18), 9)}), written});
    const RKPointLocation listed = pointsOf(cellId).last();
    RKPointLocation read;
    ASSERT_TRUE(data.getPointLocationByPointId(listed.id, read)) << lastErrorText();
    EXPECT_EQ(read.id, listed.id);
    EXPECT_EQ(read.name, "S1"_q);
    EXPECT_EQ(read.data, written.data);
    EXPECT_EQ(read.links, written.links);

    RKPointLocation none;
    EXPECT_FALSE(data.getPointLocationByPointId("000000000000000000000000"_q, none));
    EXPECT_EQ(lastStatus(), 404);
    EXPECT_TRUE(none.id.isEmpty());
}

TEST_F(PointLocationContract, SamplesComeInTheOrderOfTime)
{
    deliver({measured("S1"_q, {sample(3, december(20), 3), sample(1, december(18), 1)})});
    deliver({measured("S1"_q, {sample(2, december(19), 2)})});
    const QList<RKPointLocation> points = pointsOf(cellId);
    ASSERT_EQ(points.size(), 1);
    EXPECT_EQ(points.first().data,
              (QList<RKPointLocationData>{sample(1, december(18), 1), sample(2, december(19), 2),
                                          sample(3, december(20), 3)}));
    EXPECT_EQ(points.first().lastCount, 3);
    EXPECT_EQ(points.first().lastDate, december(20));
}

TEST_F(PointLocationContract, RepeatedDeliveryChangesNothing)
{
    const QList<RKPointLocation> delivery{
        measured("S1"_q, {sample(1, december(18), 1), sample(2, december(19), 2)})};
    deliver(delivery);
    const QString id = pointsOf(cellId).first().id;
    deliver(delivery);
    const QList<RKPointLocation> points = pointsOf(cellId);
    EXPECT_EQ(idsOf(points), QStringList{id});
    EXPECT_EQ(points.first().data, delivery.first().data);
    EXPECT_EQ(points.first().insertCount, 2);
}

TEST_F(PointLocationContract, LaterValueCorrectsTheOneHeld)
{
    deliver({measured("S1"_q, {sample(1, december(18), 1), sample(2, december(19), 2)})});
    deliver({measured("S1"_q, {sample(2, december(19), 2.5, "A"_q)})});
    EXPECT_EQ(pointsOf(cellId).first().data,
              (QList<RKPointLocationData>{sample(1, december(18), 1), sample(2, december(19), 2.5, "A"_q)}));
}

TEST_F(PointLocationContract, DepthsAreDifferentPoints)
{
    RKPointLocation shallow = point(cellId, "I1"_q, "1"_q);
    shallow.data = {sample(1, december(18), 1)};
    RKPointLocation deep = point(cellId, "I1"_q, "10"_q);
    deep.data = {sample(1, december(18), 10)};
    deliver({shallow, deep});
    const QList<RKPointLocation> points = pointsOf(cellId);
    ASSERT_EQ(points.size(), 2);
    EXPECT_EQ(points[0].depth, "1"_q);
    EXPECT_EQ(points[1].depth, "10"_q);
    EXPECT_EQ(points[1].data, deep.data);
}

TEST_F(PointLocationContract, BatchesAreOneDelivery)
{
    QString message = "before"_q;
    const QList<RKPointLocation> first{measured("S1"_q, {sample(1, december(18), 1)})};
    const QList<RKPointLocation> second{measured("S2"_q, {sample(1, december(18), 2)}),
                                        measured("S3"_q, {sample(1, december(18), 3)})};
    ASSERT_TRUE(data.createPointLocation({first, second}, message)) << lastErrorText();
    EXPECT_EQ(message, "before"_q);
    EXPECT_EQ(namesOf(pointsOf(cellId)), (QStringList{"S1"_q, "S2"_q, "S3"_q}));
    EXPECT_EQ(dataManagesOf(cellId).size(), 1);
}

TEST_F(PointLocationContract, RefusedDeliveryLeavesNothingOfIt)
{
    const RKPointLocation good = measured("S1"_q, {sample(1, december(18), 1)});
    const RKPointLocation timeless = measured("S2"_q, {sample(1, QDateTime(), 2)});
    EXPECT_FALSE(data.createPointLocation({good, timeless}));
    EXPECT_TRUE(pointsOf(cellId).isEmpty());

    QString message;
    EXPECT_FALSE(data.createPointLocation({{good}, {timeless}}, message));
    EXPECT_THAT(message.toStdString(), testing::HasSubstr("[1][0].data[0].time"));
    data.clear();
    EXPECT_TRUE(pointsOf(cellId).isEmpty());
    EXPECT_TRUE(dataManagesOf(cellId).isEmpty());

    RKPointLocation homeless = good;
    homeless.cellId = "000000000000000000000000"_q;
    message.clear();
    EXPECT_FALSE(data.createPointLocation({{homeless}}, message));
    EXPECT_FALSE(message.isEmpty());
}

TEST_F(PointLocationContract, DeliveredIsCached)
{
    deliver({measured("S1"_q, {sample(1, december(18), 1)})});
    const int before = requestCount();
    RKPointLocationCondition condition = ofCell(cellId);
    QList<RKPointLocation> cached;
    EXPECT_TRUE(data.getPointLocation(condition, cached, true));
    EXPECT_EQ(namesOf(cached), QStringList{"S1"_q});
    EXPECT_EQ(requestCount(), before);
}

TEST_F(PointLocationContract, FindsByNamePeriodAndFlag)
{
    deliver({measured("S1"_q, {sample(1, december(18), 1, "A"_q), sample(2, december(19), 2, "B"_q)}),
             measured("S2"_q, {sample(1, december(19), 3, "A"_q)})});

    RKPointLocationCondition named = ofCell(cellId);
    named.names = QStringList{"S2"_q, "S9"_q};
    EXPECT_EQ(namesOf(found(named)), QStringList{"S2"_q});

    RKPointLocationCondition flagged = ofCell(cellId);
    flagged.onlyTimeFlagA = true;
    const QList<RKPointLocation> flaggedPoints = found(flagged);
    ASSERT_EQ(namesOf(flaggedPoints), (QStringList{"S1"_q, "S2"_q}));
    EXPECT_EQ(flaggedPoints.first().data, QList<RKPointLocationData>{sample(1, december(18), 1, "A"_q)});

    RKPointLocationCondition onThe19th = ofCell(cellId);
    onThe19th.isAllTime = false;
    onThe19th.startTime = onThe19th.endTime = QDateTime(QDate(2015, 12, 19), QTime(0, 0), Qt::UTC);
    const QList<RKPointLocation> dayPoints = found(onThe19th);
    ASSERT_EQ(namesOf(dayPoints), (QStringList{"S1"_q, "S2"_q}));
    EXPECT_EQ(dayPoints.first().data, QList<RKPointLocationData>{sample(2, december(19), 2, "B"_q)});

    onThe19th.onlyTimeFlagA = true;
    EXPECT_EQ(namesOf(found(onThe19th)), QStringList{"S2"_q});
    onThe19th.startTime = onThe19th.endTime = onThe19th.startTime.addDays(5);
    EXPECT_TRUE(found(onThe19th).isEmpty());
}

TEST_F(PointLocationContract, NewestMeasuredTime)
{
    deliver({measured("S1"_q, {sample(1, december(18), 1, "A"_q), sample(2, december(22), 2)}),
             measured("S2"_q, {sample(1, december(20), 3, "A"_q)})});
    EXPECT_EQ(newest(ofCell(cellId)).name, "S1"_q);
    RKPointLocationCondition flagged = ofCell(cellId);
    flagged.onlyTimeFlagA = true;
    const RKPointLocation newestFlagged = newest(flagged);
    EXPECT_EQ(newestFlagged.name, "S2"_q);
    EXPECT_EQ(newestFlagged.data, QList<RKPointLocationData>{sample(1, december(20), 3, "A"_q)});

    RKPointLocationCondition none = ofCell(cellId);
    none.names = QStringList{"S9"_q};
    RKPointLocation left;
    left.name = "before"_q;
    EXPECT_TRUE(data.getPointLocationByTimeOrder(none, left));
    EXPECT_EQ(left.name, "before"_q);
}

TEST_F(PointLocationContract, FindsByAnyRelation)
{
    const QMap<QString, QStringList> links = linksOf(deployment().run);
    RKPointLocation linked = measured("S1"_q, {sample(1, december(18), 1)});
    linked.links = links;
    deliver({linked, measured("S2"_q, {sample(1, december(18), 2)})});
    for (const QStringList& identifiers : links) {
        for (const QString& identifier : identifiers) {
            QList<RKPointLocation> points;
            ASSERT_TRUE(data.getPointLocationByGuid(identifier, points)) << lastErrorText();
            EXPECT_EQ(namesOf(points), QStringList{"S1"_q}) << identifier.toStdString();
        }
    }
    QList<RKPointLocation> none;
    EXPECT_TRUE(data.getPointLocationByGuid(deployment().run + "-none"_q, none));
    EXPECT_TRUE(none.isEmpty());
}

TEST_F(PointLocationContract, RelinksThePointsThatMatch)
{
    RKPointLocation linked = measured("S1"_q, {sample(1, december(18), 1)});
    linked.links = linksOf(deployment().run);
    deliver({linked, measured("S2"_q, {sample(1, december(18), 2)}),
             measured("S3"_q, {sample(1, december(18), 3)})});
    RKPointLocationCondition condition = ofCell(cellId);
    condition.names = QStringList{"S1"_q, "S2"_q};
    const QMap<QString, QStringList> links{
        {"borehole"_q, {deployment().run + "-b1"_q, deployment().run + "-b2"_q}}};
    ASSERT_TRUE(data.updatePointLocation(condition, links)) << lastErrorText();

    const QList<RKPointLocation> points = pointsOf(cellId);
    ASSERT_EQ(points.size(), 3);
    EXPECT_EQ(points[0].links, links);
    EXPECT_EQ(points[1].links, links);
    EXPECT_TRUE(points[2].links.isEmpty());
    EXPECT_EQ(points[0].data, linked.data);

    ASSERT_TRUE(data.updatePointLocation(condition, {})) << lastErrorText();
    EXPECT_TRUE(pointsOf(cellId).first().links.isEmpty());
}

// A service that did not refuse would relink every point that it holds: only our own is asked.
TEST_F(PointLocationContract, RelinkingEverythingIsRefused)
{
    if (!deployment().isOwn()) {
        GTEST_SKIP() << "would relink every point of a service that does not refuse it";
    }
    RKPointLocation linked = measured("S1"_q, {sample(1, december(18), 1)});
    linked.links = linksOf(deployment().run);
    deliver({linked});
    EXPECT_FALSE(data.updatePointLocation({}, {}));
    EXPECT_EQ(lastStatus(), 400);
    EXPECT_EQ(pointsOf(cellId).first().links, linked.links);
}
