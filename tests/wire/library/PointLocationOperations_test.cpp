#include "../../support/LibraryTest.h"

#include <QJsonArray>

namespace {

using Links = QMap<QString, QStringList>;

class PointLocationOperations : public LibraryTest
{
protected:
    static RKPointLocation point(const QString& cellId, const QString& name)
    {
        RKPointLocation record;
        record.cellId = cellId;
        record.name = name;
        return record;
    }
    static RKPointLocationCondition ofCell(const QString& cellId)
    {
        RKPointLocationCondition condition;
        condition.cellId = cellId;
        return condition;
    }
    // The cached points of a cell that has an entry; asks nothing.
    QList<RKPointLocation> cached(const QString& cellId)
    {
        RKPointLocationCondition condition = ofCell(cellId);
        QList<RKPointLocation> points{point("x"_q, "replaced"_q)};
        const int requests = server.requestCount();
        EXPECT_TRUE(data.getPointLocation(condition, points, true));
        EXPECT_EQ(server.requestCount(), requests) << "the cell has no entry";
        return points;
    }
    // Whether a cell has an entry, asked so that the answer changes nothing.
    bool isCached(const QString& cellId)
    {
        RKPointLocationCondition condition = ofCell(cellId);
        QList<RKPointLocation> points;
        server.answerJson(503, "{}");
        const bool answered = data.getPointLocation(condition, points, true);
        if (answered) {
            // Uses up the answer that was not asked for.
            EXPECT_FALSE(data.getPointLocationByGuid("u"_q, points));
        }
        return answered;
    }
    static QStringList names(const QList<RKPointLocation>& points)
    {
        QStringList list;
        for (const RKPointLocation& record : points) {
            list.append(record.name);
        }
        return list;
    }
    // Reads two points of the cell "c1" into the cache.
    void readTwoPoints()
    {
        RKPointLocationCondition condition = ofCell("c1"_q);
        QList<RKPointLocation> points;
        server.answerJson(
            200, R"([{"_id":"w1","cellId":"c1","name":"W1"},{"_id":"w2","cellId":"c1","name":"W2"}])");
        EXPECT_TRUE(data.getPointLocation(condition, points, false));
        EXPECT_EQ(names(points), (QStringList{"W1"_q, "W2"_q}));
    }
};

// ---- create

TEST_F(PointLocationOperations, CreateSendsAnArrayAndCachesThePointsAsPassed)
{
    RKPointLocation first = point("c1"_q, "W1"_q);
    first.id = "mine"_q;
    first.data = {{1, QDateTime(QDate(2015, 12, 21), QTime(8, 0), Qt::UTC), 0.25, "A"_q}};
    server.answerJson(200, R"([{"_id":"given","cellId":"c9","name":"other"}])");
    EXPECT_TRUE(data.createPointLocation({first, point("c2"_q, "W2"_q), point("c1"_q, "W3"_q)}));
    EXPECT_EQ(lastMethod(), "POST");
    EXPECT_EQ(lastPath(), "pointLocations"_q);
    const QJsonArray body = QJsonDocument::fromJson(lastRequest().body).array();
    ASSERT_EQ(body.size(), 3);
    EXPECT_EQ(body.at(0).toObject().value("name"_q).toString(), "W1"_q);
    EXPECT_EQ(body.at(0).toObject().value("data"_q).toArray().size(), 1);
    EXPECT_FALSE(body.at(0).toObject().contains("_id"_q));
    EXPECT_EQ(body.at(1).toObject().value("cellId"_q).toString(), "c2"_q);

    EXPECT_EQ(names(cached("c1"_q)), (QStringList{"W1"_q, "W3"_q}));
    EXPECT_EQ(cached("c1"_q).first().id, "mine"_q) << "the reply is not read";
    EXPECT_EQ(names(cached("c2"_q)), QStringList{"W2"_q});
    EXPECT_FALSE(isCached("c9"_q));
}

TEST_F(PointLocationOperations, CreateOfNothingSendsAnEmptyArray)
{
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.createPointLocation(QList<RKPointLocation>()));
    EXPECT_EQ(lastRequest().body, "[]");
    EXPECT_FALSE(isCached(QString()));
}

TEST_F(PointLocationOperations, AFailedCreateCachesNothing)
{
    server.answerJson(400, R"({"message":"no","status":400})");
    EXPECT_FALSE(data.createPointLocation({point("c1"_q, "W1"_q)}));
    EXPECT_FALSE(isCached("c1"_q));
}

TEST_F(PointLocationOperations, CreateTakesACachedListAsItsArgument)
{
    readTwoPoints();
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.createPointLocation(cached("c1"_q)));
    EXPECT_EQ(names(cached("c1"_q)), (QStringList{"W1"_q, "W2"_q, "W1"_q, "W2"_q}));
}

TEST_F(PointLocationOperations, BatchesAreAnArrayOfArrays)
{
    QString message = "before"_q;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.createPointLocation(
        {{point("c1"_q, "W1"_q)}, {}, {point("c2"_q, "W2"_q), point("c1"_q, "W3"_q)}}, message));
    EXPECT_EQ(lastPath(), "pointLocations"_q);
    const QJsonArray body = QJsonDocument::fromJson(lastRequest().body).array();
    ASSERT_EQ(body.size(), 3);
    EXPECT_EQ(body.at(0).toArray().size(), 1);
    EXPECT_TRUE(body.at(1).isArray()) << "an empty inner list is an empty inner array";
    EXPECT_EQ(body.at(1).toArray().size(), 0);
    EXPECT_EQ(body.at(2).toArray().at(1).toObject().value("name"_q).toString(), "W3"_q);
    EXPECT_EQ(message, "before"_q) << "a success does not clear it";
    EXPECT_EQ(names(cached("c1"_q)), (QStringList{"W1"_q, "W3"_q}));
    EXPECT_EQ(names(cached("c2"_q)), QStringList{"W2"_q});
}

TEST_F(PointLocationOperations, ARefusedBatchGivesTheServicesMessage)
{
    QString message = "before"_q;
    server.answerJson(500, R"({"message":"[1][0]: unknown cell c9","status":500})");
    EXPECT_FALSE(data.createPointLocation({{}, {point("c9"_q, "W1"_q)}}, message));
    EXPECT_EQ(message, "[1][0]: unknown cell c9"_q);
    EXPECT_FALSE(isCached("c9"_q));
}

TEST_F(PointLocationOperations, ARefusedBatchWithoutAMessageEmptiesTheText)
{
    QString message = "before"_q;
    server.answerJson(500, "{}");
    EXPECT_FALSE(data.createPointLocation({{}}, message));
    EXPECT_TRUE(message.isEmpty());
}

TEST_F(PointLocationOperations, AMessageThatIsNoTextEmptiesTheText)
{
    for (const char* answer : {R"({"message":7})", R"({"message":null})", R"({"message":{"text":"no"}})",
                               R"({"message":["no"]})", R"(["message"])"}) {
        QString message = "before"_q;
        server.answerJson(500, answer);
        EXPECT_FALSE(data.createPointLocation({{}}, message)) << answer;
        EXPECT_TRUE(message.isEmpty()) << answer;
    }
}

TEST_F(PointLocationOperations, AnUnknownServerErrorHasAFixedText)
{
    QString message = "before"_q;
    server.answerJson(505, R"({"message":"not this","status":505})");
    EXPECT_FALSE(data.createPointLocation({{}}, message));
    EXPECT_EQ(message, "Connection closed prematurely"_q);
}

TEST_F(PointLocationOperations, AnyOtherFailureLeavesTheMessage)
{
    for (const int status : {400, 401, 403, 404, 409, 422, 501, 503}) {
        QString message = "before"_q;
        server.answerJson(status, R"({"message":"not this","status":0})");
        EXPECT_FALSE(data.createPointLocation({{}}, message)) << status;
        EXPECT_EQ(message, "before"_q) << status;
    }
    QString message = "before"_q;
    server.answerRaw({ScriptServer::Step::reset()});
    EXPECT_FALSE(data.createPointLocation({{}}, message));
    EXPECT_EQ(message, "before"_q);
}

// ---- read

TEST_F(PointLocationOperations, ReadAsksWithTheConditionAndAppends)
{
    RKPointLocationCondition condition = ofCell("c1"_q);
    condition.names = QStringList{"W1"_q};
    condition.onlyTimeFlagA = true;
    QList<RKPointLocation> points{point("c5"_q, "mine"_q)};
    server.answerJson(200, R"([{"_id":"w1","cellId":"c1","name":"W1","data":[{"count":1},{"count":2}]}])");
    EXPECT_TRUE(data.getPointLocation(condition, points, false));
    EXPECT_EQ(lastPath(), "projects/p7/pointLocations"_q);
    EXPECT_EQ(lastQuery(),
              (Query{{"where"_q, R"({"cellId":"c1","data.timeFlag":"A","name":{"$in":["W1"]}})"_q},
                     {"expand"_q, "true"_q}}));
    EXPECT_EQ(names(points), (QStringList{"mine"_q, "W1"_q}));
    EXPECT_EQ(points.last().data.size(), 2);
    EXPECT_EQ(names(cached("c1"_q)), QStringList{"W1"_q});
    EXPECT_EQ(names(cached("c5"_q)), QStringList{"mine"_q})
        << "what the caller had in the list is cached, too";
}

TEST_F(PointLocationOperations, ASecondUncachedReadDoublesTheEntry)
{
    readTwoPoints();
    readTwoPoints();
    EXPECT_EQ(names(cached("c1"_q)), (QStringList{"W1"_q, "W2"_q, "W1"_q, "W2"_q}));
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(PointLocationOperations, ACacheHitReplacesTheListWhateverElseIsAsked)
{
    readTwoPoints();
    RKPointLocationCondition condition = ofCell("c1"_q);
    condition.names = QStringList{"W2"_q};
    QList<RKPointLocation> points{point("x"_q, "before"_q)};
    EXPECT_TRUE(data.getPointLocation(condition, points, true));
    EXPECT_EQ(names(points), (QStringList{"W1"_q, "W2"_q}));
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(PointLocationOperations, ACellThatIsNotCachedIsAskedForInSpiteOfUseCache)
{
    readTwoPoints();
    RKPointLocationCondition condition = ofCell("C1"_q);
    QList<RKPointLocation> points;
    server.answerJson(200, R"([{"cellId":"C1","name":"other"}])");
    EXPECT_TRUE(data.getPointLocation(condition, points, true)) << "keys are compared case-sensitively";
    EXPECT_EQ(names(points), QStringList{"other"_q});
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(PointLocationOperations, AFailedReadCachesNothing)
{
    RKPointLocationCondition condition = ofCell("c1"_q);
    QList<RKPointLocation> points{point("c1"_q, "mine"_q)};
    server.answerJson(422, R"({"message":"no","status":422})");
    EXPECT_FALSE(data.getPointLocation(condition, points, false));
    EXPECT_EQ(names(points), QStringList{"mine"_q});
    EXPECT_FALSE(isCached("c1"_q));
}

TEST_F(PointLocationOperations, ClearForgetsThePoints)
{
    readTwoPoints();
    data.clear();
    EXPECT_FALSE(isCached("c1"_q));
}

TEST_F(PointLocationOperations, ByGuidAsksForTheIdentifierAlone)
{
    QList<RKPointLocation> points{point("c1"_q, "mine"_q)};
    server.answerJson(200, R"([{"_id":"w1","cellId":"c1","name":"W1"}])");
    EXPECT_TRUE(data.getPointLocationByGuid("3F\"x"_q, points));
    EXPECT_EQ(lastPath(), "projects/p7/pointLocations"_q);
    EXPECT_EQ(lastQuery(), (Query{{"expand"_q, "true"_q}, {"where"_q, R"({"uuid":"3F\"x"})"_q}}));
    EXPECT_FALSE(lastRequest().target.contains("ne"_q.prepend(QLatin1Char('$')).toLatin1()));
    EXPECT_EQ(names(points), (QStringList{"mine"_q, "W1"_q}));
    EXPECT_FALSE(isCached("c1"_q));
}

TEST_F(PointLocationOperations, ByIdReadsIntoTheCallersRecord)
{
    RKPointLocation record = point("x"_q, "x"_q);
    record.alias = "kept"_q;
    record.data = {{1, {}, 0.0, {}}};
    server.answerJson(200, R"({"_id":"w1","cellId":"c1","name":"W1","data":[{"count":2}]})");
    EXPECT_TRUE(data.getPointLocationByPointId("w1"_q, record));
    EXPECT_EQ(lastPath(), "pointLocations/w1"_q);
    EXPECT_TRUE(lastQuery().isEmpty());
    EXPECT_EQ(record.name, "W1"_q);
    EXPECT_EQ(record.alias, "kept"_q);
    EXPECT_EQ(record.data.size(), 2);
    EXPECT_FALSE(isCached("c1"_q));
}

TEST_F(PointLocationOperations, AMarkerInAnIdStaysWhenNothingFollows)
{
    RKPointLocation record;
    server.answerJson(200, "{}");
    EXPECT_TRUE(data.getPointLocationByPointId("w%1%2"_q, record));
    EXPECT_EQ(lastPath(), "pointLocations/w%1%2"_q);
}

TEST_F(PointLocationOperations, AFailedByIdEmptiesTheRecord)
{
    RKPointLocation record = point("x"_q, "x"_q);
    server.answerJson(404, R"({"message":"no","status":404})");
    EXPECT_FALSE(data.getPointLocationByPointId("w1"_q, record));
    EXPECT_TRUE(record.name.isEmpty() && record.cellId.isEmpty());
}

TEST_F(PointLocationOperations, TheNewestIsTheFirstOfTheAnswer)
{
    RKPointLocationCondition condition = ofCell("c1"_q);
    RKPointLocation record;
    server.answerJson(200, R"([{"_id":"w1","cellId":"c1","name":"W1"},{"_id":"w2","name":"W2"}])");
    EXPECT_TRUE(data.getPointLocationByTimeOrder(condition, record));
    EXPECT_EQ(lastPath(), "projects/p7/pointLocations"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"cellId":"c1"})"_q},
                                  {"expand"_q, "true"_q},
                                  {"order"_q, "-data.time"_q},
                                  {"limit"_q, "1"_q},
                                  {"skip"_q, "0"_q}}));
    EXPECT_EQ(record.name, "W1"_q);
    EXPECT_FALSE(isCached("c1"_q));
}

TEST_F(PointLocationOperations, NoNewestLeavesTheRecord)
{
    RKPointLocationCondition condition;
    RKPointLocation record = point("x"_q, "before"_q);
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getPointLocationByTimeOrder(condition, record));
    EXPECT_EQ(record.name, "before"_q);
    server.answerJson(500, "{}");
    EXPECT_FALSE(data.getPointLocationByTimeOrder(condition, record));
    EXPECT_EQ(record.name, "before"_q);
}

// ---- update

TEST_F(PointLocationOperations, UpdateSendsTheLinksAndReplacesThoseOfTheNamedPoints)
{
    readTwoPoints();
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.createPointLocation({point("c2"_q, "W2"_q)}));

    RKPointLocationCondition condition = ofCell("c1"_q);
    condition.names = QStringList{"W2"_q, "w1"_q, "W9"_q};
    const Links links{{"model"_q, {"m1"_q}}};
    server.answerJson(200, "{}");
    EXPECT_TRUE(data.updatePointLocation(condition, links));
    EXPECT_EQ(lastMethod(), "PUT");
    EXPECT_EQ(lastPath(), "pointLocations"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"cellId":"c1","name":{"$in":["W2","w1","W9"]}})"_q}}));
    const QJsonObject link{{"type"_q, "model"_q}, {"rId"_q, "m1"_q}};
    EXPECT_EQ(lastBody(), (QJsonObject{{"links"_q, QJsonArray{link}}}));

    EXPECT_TRUE(cached("c1"_q).at(0).links.isEmpty()) << "names are compared case-sensitively";
    EXPECT_EQ(cached("c1"_q).at(1).links, links);
    EXPECT_TRUE(cached("c2"_q).at(0).links.isEmpty()) << "a point of another cell";
}

TEST_F(PointLocationOperations, UpdateReplacesTheLinksOfEveryDouble)
{
    readTwoPoints();
    readTwoPoints();
    RKPointLocationCondition condition = ofCell("c1"_q);
    condition.names = QStringList{"W1"_q};
    const Links links{{"model"_q, {"m1"_q}}};
    server.answerJson(200, "{}");
    EXPECT_TRUE(data.updatePointLocation(condition, links));
    const QList<RKPointLocation> points = cached("c1"_q);
    ASSERT_EQ(names(points), (QStringList{"W1"_q, "W2"_q, "W1"_q, "W2"_q}));
    EXPECT_EQ(points.at(0).links, links);
    EXPECT_EQ(points.at(2).links, links);
    EXPECT_TRUE(points.at(1).links.isEmpty() && points.at(3).links.isEmpty());
}

TEST_F(PointLocationOperations, UpdateWithoutNamesChangesNoCachedPoint)
{
    readTwoPoints();
    server.answerJson(200, "{}");
    EXPECT_TRUE(data.updatePointLocation(ofCell("c1"_q), Links{{"model"_q, {"m1"_q}}}));
    for (const RKPointLocation& record : cached("c1"_q)) {
        EXPECT_TRUE(record.links.isEmpty());
    }
}

TEST_F(PointLocationOperations, UpdateMakesAnEntryForItsCell)
{
    server.answerJson(200, "{}");
    EXPECT_TRUE(data.updatePointLocation(ofCell("c1"_q), {}));
    EXPECT_TRUE(cached("c1"_q).isEmpty());
}

TEST_F(PointLocationOperations, AFailedUpdateLeavesTheCache)
{
    readTwoPoints();
    RKPointLocationCondition condition = ofCell("c1"_q);
    condition.names = QStringList{"W1"_q};
    server.answerJson(403, R"({"message":"no","status":403})");
    EXPECT_FALSE(data.updatePointLocation(condition, Links{{"model"_q, {"m1"_q}}}));
    EXPECT_TRUE(cached("c1"_q).first().links.isEmpty());
    condition.cellId = "c2"_q;
    server.answerJson(403, "{}");
    EXPECT_FALSE(data.updatePointLocation(condition, {}));
    EXPECT_FALSE(isCached("c2"_q));
}

TEST_F(PointLocationOperations, UpdateIsOfTheConditionAsItWasAsked)
{
    readTwoPoints();
    RKPointLocationCondition condition = ofCell("c1"_q);
    condition.names = QStringList{"W1"_q};
    Links links{{"model"_q, {"m1"_q}}};
    server.answerJson(200, "{}");
    server.onRequest = [&] {
        condition = RKPointLocationCondition();
        links.clear();
    };
    EXPECT_TRUE(data.updatePointLocation(condition, links));
    EXPECT_EQ(cached("c1"_q).first().links, (Links{{"model"_q, {"m1"_q}}}));
}

} // namespace
