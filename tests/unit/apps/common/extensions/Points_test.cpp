#include "extensions/Points.h"

#include "ScriptedExtensions.h"

#include <limits>

namespace {

class Points : public ScriptedExtensions
{
protected:
    Points() { announceAll(); }

    static QJsonObject point()
    {
        return jsonObject(R"({"_id":"pt1","cellId":"c1","subCategoryId":"s1","name":"S1","depth":"2.5",
            "alias":"corner","dataType":3,"initialValue":0,"hasInitialValue":true,"offsetDirection":"N",
            "insertCount":4,"lastDate":"2026-03-06T08:00:00.000+01:00"})");
    }

    static QJsonObject summary()
    {
        QJsonObject summary = point();
        summary["category"_q] = "Settlement"_q;
        summary["reference"_q] = 0;
        summary["data"_q] = QJsonArray{sample()};
        return summary;
    }

    static QJsonObject sample()
    {
        return jsonObject(
            R"({"count":7,"time":"2026-03-06T08:00:00.000+01:00","value":110.5,"timeFlag":"A"})");
    }

    void answerPage(const QJsonObject& document) { answer(QJsonArray{document}); }

    // The body that a change is sent with.
    QByteArray bodyOf(const PointChange& change)
    {
        answer(point());
        service.changePoint("pt1"_q, change);
        EXPECT_EQ(lastRequest(), "PATCH pointLocations/pt1");
        return lastBody();
    }
};

} // namespace

TEST_F(Points, AreSummedUpByTheirLatestSamples)
{
    answerPage(summary());
    PointSummaryQuery query;
    query.where = QJsonObject{{"cellId"_q, "c1"_q}};
    query.order = "-lastDate,name"_q;
    const QList<PointSummary> found = service.pointSummaries("p7"_q, query, 20, 10);
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0].id, "pt1"_q);
    EXPECT_EQ(found[0].cellId, "c1"_q);
    EXPECT_EQ(found[0].subCategoryId, "s1"_q);
    EXPECT_EQ(found[0].category, "Settlement"_q);
    EXPECT_EQ(found[0].name, "S1"_q);
    EXPECT_EQ(found[0].depth, "2.5"_q);
    EXPECT_EQ(found[0].alias, "corner"_q);
    EXPECT_EQ(found[0].dataType, 3);
    EXPECT_EQ(found[0].initialValue, 0.0);
    EXPECT_EQ(found[0].offsetDirection, "N"_q);
    EXPECT_EQ(found[0].samples, 4);
    EXPECT_EQ(found[0].latestTime, QDateTime(QDate(2026, 3, 6), QTime(7, 0), Qt::UTC));
    EXPECT_EQ(found[0].reference, 0.0);
    EXPECT_EQ(found[0].minimum, std::nullopt);
    EXPECT_EQ(found[0].maximum, std::nullopt);
    ASSERT_TRUE(found[0].latest);
    EXPECT_EQ(found[0].latest->count, 7);
    EXPECT_EQ(found[0].latest->value, 110.5);
    EXPECT_EQ(found[0].latest->time.offsetFromUtc(), 3600);
    EXPECT_EQ(found[0].latest->timeFlag, "A"_q);
    EXPECT_EQ(lastRequest(), "GET projects/p7/pointLocations");
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"cellId":"c1"})"_q},
                                  {"order"_q, "-lastDate,name"_q},
                                  {"skip"_q, "20"_q},
                                  {"limit"_q, "10"_q},
                                  {"samples"_q, "latest"_q}}));
}

TEST_F(Points, AreSummedUpWithExtremesWhenAskedFor)
{
    QJsonObject document = summary();
    document["minimum"_q] = 101.5;
    document["maximum"_q] = 110.0;
    answerPage(document);
    PointSummaryQuery query;
    query.withExtremes = true;
    const QList<PointSummary> found = service.pointSummaries("p7"_q, query, 0, 10);
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0].minimum, 101.5);
    EXPECT_EQ(found[0].maximum, 110.0);
    EXPECT_EQ(lastQuery().constLast(), qMakePair("rollup"_q, "true"_q));
}

TEST_F(Points, WithoutSamplesHaveNeitherReferenceNorLatestNorExtremes)
{
    QJsonObject document = summary();
    document["hasInitialValue"_q] = false;
    document["insertCount"_q] = 0;
    document["lastDate"_q] = QString();
    document["reference"_q] = QJsonValue::Null;
    document["minimum"_q] = QJsonValue::Null;
    document["maximum"_q] = QJsonValue::Null;
    document["data"_q] = QJsonArray();
    answerPage(document);
    PointSummaryQuery query;
    query.withExtremes = true;
    const QList<PointSummary> found = service.pointSummaries("p7"_q, query, 0, 10);
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0].initialValue, std::nullopt);
    EXPECT_FALSE(found[0].latestTime.isValid());
    EXPECT_EQ(found[0].reference, std::nullopt);
    EXPECT_EQ(found[0].minimum, std::nullopt);
    EXPECT_EQ(found[0].maximum, std::nullopt);
    EXPECT_FALSE(found[0].latest);
}

TEST_F(Points, AreCounted)
{
    server.answerJson(200, R"({"count":1234})");
    EXPECT_EQ(service.pointSummaryCount("p7"_q, {}), 1234);
    EXPECT_EQ(lastRequest(), "GET projects/p7/pointLocations");
    EXPECT_EQ(lastQuery(),
              (Query{{"where"_q, "{}"_q}, {"only_count"_q, "true"_q}, {"samples"_q, "latest"_q}}));
}

TEST_F(Points, AreSummedUpByNothingButThePageThatWasAskedFor)
{
    QJsonObject document = summary();
    document["data"_q] = QJsonArray{sample(), sample()};
    answerPage(document);
    const auto read = [&] {
        service.pointSummaries("p7"_q, {}, 0, 10);
    };
    EXPECT_EQ(messageOf(read),
              "cannot sum up points: in the answer \"[0].data\" is more than the latest sample");
    server.answerJson(200, "{}");
    EXPECT_EQ(messageOf(read), "cannot sum up points: the answer is not a list");
    server.answerJson(200, R"({"count":1})");
    EXPECT_EQ(messageOf(read), "cannot sum up points: the answer is not a list");
    server.answerJson(200, "[1]");
    EXPECT_EQ(messageOf(read), "cannot sum up points: in the answer \"[0]\" is not an object");
    server.answerJson(200, " [ ] ");
    EXPECT_TRUE(service.pointSummaries("p7"_q, {}, 0, 10).isEmpty());
}

TEST_F(Points, AreChangedInWhatIsSetAlone)
{
    EXPECT_EQ(bodyOf({}), "{}");
    PointChange change;
    change.initialValue = 0.0;
    EXPECT_EQ(bodyOf(change), R"({"initialValue":0})");
    change = PointChange();
    change.removesInitialValue = true;
    EXPECT_EQ(bodyOf(change), R"({"initialValue":null})");
    change = PointChange();
    change.alias = QString();
    EXPECT_EQ(bodyOf(change), R"({"alias":""})");
    change = PointChange();
    change.initialValue = 12.5;
    change.alias = "é"_q;
    change.dataType = 0;
    change.offsetDirection = "N"_q;
    EXPECT_EQ(QJsonDocument::fromJson(bodyOf(change)).object(),
              jsonObject(R"({"initialValue":12.5,"alias":"é","dataType":0,"offsetDirection":"N"})"));
}

TEST_F(Points, AreAsTheServiceSaysAfterAChange)
{
    answer(point());
    PointChange change;
    change.alias = "corner"_q;
    const PointDetails changed = service.changePoint("pt1"_q, change);
    EXPECT_EQ(changed.id, "pt1"_q);
    EXPECT_EQ(changed.alias, "corner"_q);
    EXPECT_EQ(changed.initialValue, 0.0);
}

TEST_F(Points, GetNoInitialValueThatIsNoNumber)
{
    const int before = server.requestCount();
    for (const double value :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        PointChange change;
        change.initialValue = value;
        EXPECT_EQ(failureOf([&] { service.changePoint("pt1"_q, change); }), FailureKind::BadInput);
    }
    EXPECT_EQ(server.requestCount(), before);
}

TEST_F(Points, ThatAreDeletedSayWhatWentWithThem)
{
    QJsonObject document = point();
    document["removed"_q] = 4;
    document["alarms"_q] = QJsonArray{"a1"_q, "a2"_q};
    answer(document);
    const DeletedPoint deleted = service.deletePoint("pt1"_q);
    EXPECT_EQ(deleted.name, "S1"_q);
    EXPECT_EQ(deleted.removedSamples, 4);
    EXPECT_EQ(deleted.alarms, (QStringList{"a1"_q, "a2"_q}));
    EXPECT_EQ(lastRequest(), "DELETE pointLocations/pt1");
    EXPECT_EQ(lastQuery(), Query());
}

TEST_F(Points, LoseTheSamplesThatMeetACondition)
{
    server.answerJson(200, R"({"_id":"pt1","removed":2,"alarms":[]})");
    const QJsonObject where = jsonObject(R"({"time":{"$gte":"2026-03-06T00:00:00.000+01:00"}})");
    const DeletedSamples deleted = service.deleteSamples("pt1"_q, where);
    EXPECT_EQ(deleted.pointId, "pt1"_q);
    EXPECT_EQ(deleted.removed, 2);
    EXPECT_TRUE(deleted.alarms.isEmpty());
    EXPECT_EQ(lastRequest(), "DELETE pointLocations/pt1/samples");
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, compact(where)}}));
}

TEST_F(Points, AreCheckedMemberByMember)
{
    const auto whole = [&](const QJsonObject& document) {
        answer(document);
    };
    QJsonObject withExtremes = summary();
    withExtremes["minimum"_q] = 1;
    withExtremes["maximum"_q] = 2;
    PointSummaryQuery query;
    query.withExtremes = true;
    expectMembersAreChecked(
        withExtremes, [&](const QJsonObject& document) { answerPage(document); },
        [&] { service.pointSummaries("p7"_q, query, 0, 10); });
    expectMembersAreChecked(
        sample(),
        [&](const QJsonObject& wrong) {
            QJsonObject document = summary();
            document["data"_q] = QJsonArray{wrong};
            answerPage(document);
        },
        [&] { service.pointSummaries("p7"_q, {}, 0, 10); });
    expectMembersAreChecked(point(), whole, [&] { service.changePoint("pt1"_q, {}); });
    QJsonObject deleted = point();
    deleted["removed"_q] = 4;
    deleted["alarms"_q] = QJsonArray();
    expectMembersAreChecked(deleted, whole, [&] { service.deletePoint("pt1"_q); });
    expectMembersAreChecked(jsonObject(R"({"_id":"pt1","removed":2,"alarms":[]})"), whole,
                            [&] { service.deleteSamples("pt1"_q, {}); });
    expectMembersAreChecked(jsonObject(R"({"count":2})"), whole,
                            [&] { service.pointSummaryCount("p7"_q, {}); });
}
