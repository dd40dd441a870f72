#include "../../support/LibraryTest.h"

#include <QJsonArray>

namespace {

const char* const pit = R"({"_id":"c1","name":"Pit K1","category":"pit","alarmTo":["a@x"],)"
                        R"("links":[{"type":"model","rId":"m1"}],)"
                        R"("createdAt":"2024-03-01T08:00:00.000Z","createdBy":"ann",)"
                        R"("updatedAt":"2024-03-01T08:00:00.000Z","updatedBy":"ann"})";

class MonitoringOperations : public LibraryTest
{
protected:
    // Caches the monitoring `pit`, with one request.
    RKMonitoring cachedPit()
    {
        RKMonitoring monitoring;
        server.answerJson(200, pit);
        EXPECT_TRUE(data.getMonitoringById("c1"_q, monitoring, false));
        return monitoring;
    }
    // Name under `id` in the cache; asks nothing.
    QString cachedName(const QString& id)
    {
        RKMonitoring monitoring;
        EXPECT_TRUE(data.getMonitoringById(id, monitoring, true));
        return monitoring.name;
    }
};

// ---- create

TEST_F(MonitoringOperations, CreateSendsTheRecordAndTakesTheServicesView)
{
    RKMonitoring monitoring;
    monitoring.name = "Pit"_q;
    monitoring.category = "pit"_q;
    monitoring.projectId = "my note"_q;
    server.answerJson(200, pit);
    EXPECT_TRUE(data.createMonitoring(monitoring));

    EXPECT_EQ(lastMethod(), "POST");
    EXPECT_EQ(lastPath(), "cells"_q);
    EXPECT_EQ(lastBody(), (QJsonObject{{"alarmTo"_q, QJsonArray()},
                                       {"category"_q, "pit"_q},
                                       {"name"_q, "Pit"_q},
                                       {"projectId"_q, "p7"_q}}));
    EXPECT_EQ(monitoring.id, "c1"_q);
    EXPECT_EQ(monitoring.name, "Pit K1"_q);
    EXPECT_EQ(monitoring.createdBy, "ann"_q);
    EXPECT_EQ(monitoring.projectId, "my note"_q);
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit K1"_q);
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(MonitoringOperations, AFailedCreateEmptiesTheRecordAndCachesNothing)
{
    RKMonitoring monitoring;
    monitoring.id = monitoring.name = monitoring.category = "x"_q;
    monitoring.modelId = "m"_q;
    monitoring.projectId = "my note"_q;
    monitoring.alarmTo = QStringList{"a"_q};
    server.answerJson(403, R"({"message":"no","status":403})");
    EXPECT_FALSE(data.createMonitoring(monitoring));
    EXPECT_TRUE(monitoring.id.isEmpty() && monitoring.name.isEmpty() && monitoring.category.isEmpty());
    EXPECT_TRUE(monitoring.alarmTo.isEmpty());
    EXPECT_EQ(monitoring.modelId, "m"_q);
    EXPECT_EQ(monitoring.projectId, "my note"_q);

    server.answerJson(404, "{}");
    EXPECT_TRUE(data.getMonitoringName(QString()).isEmpty());
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(MonitoringOperations, CreateReplacesACachedEntryOfTheNewId)
{
    cachedPit();
    RKMonitoring monitoring;
    server.answerJson(200, R"({"_id":"c1","name":"New pit"})");
    EXPECT_TRUE(data.createMonitoring(monitoring));
    EXPECT_EQ(cachedName("c1"_q), "New pit"_q);
}

// ---- update

TEST_F(MonitoringOperations, UpdateSendsOnlyWhatChanged)
{
    RKMonitoring monitoring = cachedPit();
    monitoring.name = "Pit K2"_q;
    server.answerJson(200, R"({"_id":"c1","name":"Pit K2","category":"pit","updatedBy":"bo"})");
    EXPECT_TRUE(data.updateMonitoring(monitoring));
    EXPECT_EQ(lastMethod(), "PUT");
    EXPECT_EQ(lastPath(), "cells/c1"_q);
    EXPECT_EQ(lastBody(), (QJsonObject{{"name"_q, "Pit K2"_q}}));
    EXPECT_EQ(monitoring.updatedBy, "bo"_q);
    EXPECT_EQ(monitoring.modelId, "m1"_q) << "the reply has no model link, so the record keeps its own";
    EXPECT_EQ(cachedName("c1"_q), "Pit K2"_q);
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(MonitoringOperations, UpdateWithoutAChangeSendsNothingAndGivesTheCachedRecord)
{
    RKMonitoring monitoring = cachedPit();
    monitoring.createdBy = "somebody"_q;
    monitoring.projectId = "my note"_q;
    EXPECT_TRUE(data.updateMonitoring(monitoring));
    EXPECT_EQ(monitoring.createdBy, "ann"_q);
    EXPECT_TRUE(monitoring.projectId.isEmpty()) << "members without a JSON form are the cached ones, too";
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(MonitoringOperations, UpdateDoesNotSendAnEmptiedModel)
{
    RKMonitoring monitoring = cachedPit();
    monitoring.modelId.clear();
    EXPECT_TRUE(data.updateMonitoring(monitoring));
    EXPECT_EQ(monitoring.modelId, "m1"_q);
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(MonitoringOperations, UpdateSendsAChangedModelAsALink)
{
    RKMonitoring monitoring = cachedPit();
    monitoring.modelId = "m2"_q;
    server.answerJson(200, pit);
    EXPECT_TRUE(data.updateMonitoring(monitoring));
    const QJsonObject link{{"type"_q, "model"_q}, {"rId"_q, "m2"_q}};
    EXPECT_EQ(lastBody(), (QJsonObject{{"links"_q, QJsonArray{link}}}));
}

TEST_F(MonitoringOperations, UpdateOfARecordNeverCachedSendsEveryFilledMember)
{
    RKMonitoring monitoring;
    monitoring.id = "c9"_q;
    monitoring.name = "Pit"_q;
    monitoring.alarmTo = QStringList{"a@x"_q};
    server.answerJson(200, R"({"_id":"c9","name":"Pit"})");
    EXPECT_TRUE(data.updateMonitoring(monitoring));
    EXPECT_EQ(lastPath(), "cells/c9"_q);
    EXPECT_EQ(lastBody(), (QJsonObject{{"alarmTo"_q, QJsonArray{"a@x"_q}}, {"name"_q, "Pit"_q}}));
}

TEST_F(MonitoringOperations, UpdateOfAnEmptyRecordNeverCachedSendsNothing)
{
    RKMonitoring monitoring;
    monitoring.id = "c9"_q;
    EXPECT_TRUE(data.updateMonitoring(monitoring));
    EXPECT_TRUE(monitoring.id.isEmpty()) << "the record becomes the empty one that it was compared with";
    EXPECT_EQ(server.requestCount(), 0);
}

TEST_F(MonitoringOperations, AFailedUpdateLeavesTheCacheAndEmptiesTheRecord)
{
    RKMonitoring monitoring = cachedPit();
    monitoring.name = "Pit K2"_q;
    server.answerJson(409, R"({"message":"no","status":409})");
    EXPECT_FALSE(data.updateMonitoring(monitoring));
    EXPECT_TRUE(monitoring.id.isEmpty() && monitoring.name.isEmpty());
    EXPECT_EQ(monitoring.modelId, "m1"_q);
    EXPECT_EQ(cachedName("c1"_q), "Pit K1"_q);
}

TEST_F(MonitoringOperations, AFailedUpdateOfARecordNeverCachedLeavesAnEmptyEntry)
{
    RKMonitoring monitoring;
    monitoring.id = "c9"_q;
    monitoring.name = "Pit"_q;
    server.answerJson(500, "{}");
    EXPECT_FALSE(data.updateMonitoring(monitoring));
    EXPECT_TRUE(data.getMonitoringName("c9"_q).isEmpty());
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(MonitoringOperations, UpdateIsCachedUnderTheIdOfTheReply)
{
    RKMonitoring monitoring = cachedPit();
    monitoring.name = "Moved"_q;
    server.answerJson(200, R"({"_id":"c2","name":"Moved"})");
    EXPECT_TRUE(data.updateMonitoring(monitoring));
    EXPECT_EQ(cachedName("c1"_q), "Pit K1"_q);
    EXPECT_EQ(cachedName("c2"_q), "Moved"_q);
}

// ---- delete

TEST_F(MonitoringOperations, ADeletedMonitoringStaysCached)
{
    cachedPit();
    server.answerJson(200, "{}");
    EXPECT_TRUE(data.deleteMonitoring("c1"_q));
    EXPECT_EQ(lastMethod(), "DELETE");
    EXPECT_EQ(lastPath(), "cells/c1"_q);
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit K1"_q);
    EXPECT_EQ(cachedName("c1"_q), "Pit K1"_q);
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(MonitoringOperations, ADeleteThatIsRefusedIsAFailure)
{
    server.answerJson(403, R"({"message":"no","status":403})");
    EXPECT_FALSE(data.deleteMonitoring("c1"_q));
}

TEST_F(MonitoringOperations, ADeleteAnsweredWithoutABodySucceeds)
{
    server.answerRaw({ScriptServer::Step::bytes("HTTP/1.1 204 No Content\r\n\r\n")});
    EXPECT_TRUE(data.deleteMonitoring("c1"_q));
}

// ---- by id, by name

TEST_F(MonitoringOperations, ByIdAsksAndCachesUnderTheIdAskedFor)
{
    RKMonitoring monitoring;
    server.answerJson(200, pit);
    EXPECT_TRUE(data.getMonitoringById("alias"_q, monitoring, false));
    EXPECT_EQ(lastMethod(), "GET");
    EXPECT_EQ(lastPath(), "cells/alias"_q);
    EXPECT_EQ(monitoring.id, "c1"_q);
    EXPECT_EQ(data.getMonitoringName("alias"_q), "Pit K1"_q);
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(MonitoringOperations, ByIdTakesTheRecordsOwnIdAsItsArgument)
{
    RKMonitoring monitoring;
    monitoring.id = "alias"_q;
    server.answerJson(200, pit);
    EXPECT_TRUE(data.getMonitoringById(monitoring.id, monitoring, false));
    EXPECT_EQ(cachedName("alias"_q), "Pit K1"_q);
    EXPECT_TRUE(cachedName("c1"_q).isEmpty());
}

TEST_F(MonitoringOperations, ByIdFromTheCacheAsksNothing)
{
    cachedPit();
    RKMonitoring monitoring;
    EXPECT_TRUE(data.getMonitoringById("c1"_q, monitoring, true));
    EXPECT_EQ(monitoring.alarmTo, QStringList{"a@x"_q});
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(MonitoringOperations, ByIdWithoutTheCacheAlwaysAsks)
{
    cachedPit();
    cachedPit();
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(MonitoringOperations, AFailedByIdCachesNothing)
{
    RKMonitoring monitoring;
    monitoring.name = "before"_q;
    server.answerJson(404, R"({"message":"no","status":404})");
    EXPECT_FALSE(data.getMonitoringById("c1"_q, monitoring, false));
    EXPECT_TRUE(monitoring.name.isEmpty());
    server.answerJson(200, pit);
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit K1"_q);
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(MonitoringOperations, NameAsksOnceAndThenAnswersFromTheCache)
{
    server.answerJson(200, pit);
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit K1"_q);
    EXPECT_EQ(lastPath(), "cells/c1"_q);
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit K1"_q);
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(MonitoringOperations, AFailedNameIsNullAndAskedAgain)
{
    server.answerJson(500, "{}");
    EXPECT_TRUE(data.getMonitoringName("c1"_q).isNull());
    server.answerJson(200, pit);
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit K1"_q);
}

// ---- by model

TEST_F(MonitoringOperations, ByModelAppendsWithoutTouchingTheCache)
{
    QList<RKMonitoring> monitorings{RKMonitoring()};
    server.answerJson(200, R"([{"_id":"c1","name":"A"},{"_id":"c2","name":"B"}])");
    EXPECT_TRUE(data.getMonitoringByModelId("m1"_q, monitorings));
    EXPECT_EQ(lastPath(), "projects/p7/cells"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"links.rId":"m1"})"_q}})) << "no expand here";
    ASSERT_EQ(monitorings.size(), 3);
    EXPECT_EQ(monitorings.at(2).name, "B"_q);
    server.answerJson(404, "{}");
    EXPECT_TRUE(data.getMonitoringName("c1"_q).isEmpty());
}

TEST_F(MonitoringOperations, ByModelKeepsNoModelOfThePreviousRow)
{
    QList<RKMonitoring> monitorings;
    server.answerJson(200, R"([{"_id":"c1","links":[{"type":"model","rId":"m1"}]},{"_id":"c2"}])");
    EXPECT_TRUE(data.getMonitoringByModelId("m1"_q, monitorings));
    ASSERT_EQ(monitorings.size(), 2);
    EXPECT_EQ(monitorings.at(0).modelId, "m1"_q);
    EXPECT_TRUE(monitorings.at(1).modelId.isEmpty());
}

// ---- count

TEST_F(MonitoringOperations, CountAsksWithTheCondition)
{
    RKMonitoringCondition condition;
    condition.modelId = "m1"_q;
    int count = -1;
    server.answerJson(200, R"({"count":42})");
    EXPECT_TRUE(data.getMonitoringRangeCount(condition, count));
    EXPECT_EQ(count, 42);
    EXPECT_EQ(lastPath(), "projects/p7/cells"_q);
    EXPECT_EQ(
        lastQuery(),
        (Query{{"where"_q, R"({"links.rId":"m1"})"_q}, {"expand"_q, "true"_q}, {"only_count"_q, "true"_q}}));
}

TEST_F(MonitoringOperations, ACountIsZeroWhenTheReplyHasNoneOrFailed)
{
    for (const char* answer : {"{}", R"({"count":"7"})", R"({"count":1.5})", "[]"}) {
        int count = -1;
        server.answerJson(200, answer);
        EXPECT_TRUE(data.getMonitoringRangeCount({}, count)) << answer;
        EXPECT_EQ(count, 0) << answer;
    }
    int count = -1;
    server.answerJson(503, R"({"message":"busy","status":503})");
    EXPECT_FALSE(data.getMonitoringRangeCount({}, count));
    EXPECT_EQ(count, 0);
}

// ---- page

TEST_F(MonitoringOperations, APageAsksWithConditionSkipAndLimit)
{
    RKMonitoringCondition condition;
    condition.name = "a b"_q;
    QList<RKMonitoring> monitorings;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getMonitoringRangeData(condition, 0, 20, monitorings));
    EXPECT_EQ(lastPath(), "projects/p7/cells"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"name":{"$options":"i","$regex":"a b"}})"_q},
                                  {"skip"_q, "0"_q},
                                  {"limit"_q, "20"_q}}));
}

TEST_F(MonitoringOperations, PagingNumbersAreNotClamped)
{
    QList<RKMonitoring> monitorings;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getMonitoringRangeData({}, -5, 0, monitorings));
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{}"_q}, {"skip"_q, "-5"_q}, {"limit"_q, "0"_q}}));
}

TEST_F(MonitoringOperations, APercentAndADigitInANameTakeThePagingNumber)
{
    RKMonitoringCondition condition;
    condition.exactName = "5%1"_q;
    QList<RKMonitoring> monitorings;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getMonitoringRangeData(condition, 40, 20, monitorings));
    EXPECT_EQ(lastQuery(),
              (Query{{"where"_q, R"({"name":"540"})"_q}, {"skip"_q, "20"_q}, {"limit"_q, "%4"_q}}));
}

TEST_F(MonitoringOperations, APageRefillsTheCacheWithEverythingInTheList)
{
    cachedPit();
    QList<RKMonitoring> monitorings{RKMonitoring()};
    monitorings.first().id = "mine"_q;
    monitorings.first().name = "Mine"_q;
    server.answerJson(200,
                      R"([{"_id":"c2","name":"B"},{"_id":"c2","name":"B again"},{"_id":"c3","name":"C"}])");
    EXPECT_TRUE(data.getMonitoringRangeData({}, 0, 20, monitorings));
    ASSERT_EQ(monitorings.size(), 4);
    EXPECT_EQ(data.getMonitoringName("mine"_q), "Mine"_q);
    EXPECT_EQ(data.getMonitoringName("c2"_q), "B again"_q) << "the later of two rows wins";
    EXPECT_EQ(data.getMonitoringName("c3"_q), "C"_q);
    EXPECT_EQ(server.requestCount(), 2);
    server.answerJson(404, "{}");
    EXPECT_TRUE(data.getMonitoringName("c1"_q).isEmpty()) << "what was cached before is gone";
}

TEST_F(MonitoringOperations, AnEmptyPageEmptiesTheCache)
{
    cachedPit();
    QList<RKMonitoring> monitorings;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getMonitoringRangeData({}, 0, 20, monitorings));
    server.answerJson(404, "{}");
    EXPECT_TRUE(data.getMonitoringName("c1"_q).isEmpty());
}

TEST_F(MonitoringOperations, AFailedPageReturnsTrueAndChangesNothing)
{
    cachedPit();
    QList<RKMonitoring> monitorings;
    server.answerJson(500, R"({"message":"no","status":500})");
    EXPECT_TRUE(data.getMonitoringRangeData({}, 0, 20, monitorings));
    EXPECT_TRUE(monitorings.isEmpty());
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit K1"_q);
    EXPECT_EQ(server.requestCount(), 2);
}

// ---- identifiers and names

TEST_F(MonitoringOperations, IdsAndNamesAreAppendedInOrder)
{
    QList<QPair<QString, QString>> cells{{"x"_q, "X"_q}};
    server.answerJson(200, R"([{"_id":"c2","name":"B"},{"_id":"c1"},{"name":7}])");
    EXPECT_TRUE(data.getCellIdAndName(cells));
    EXPECT_EQ(lastPath(), "projects/p7/cells"_q);
    EXPECT_TRUE(lastQuery().isEmpty());
    EXPECT_EQ(cells, (QList<QPair<QString, QString>>{
                         {"x"_q, "X"_q}, {"c2"_q, "B"_q}, {"c1"_q, ""_q}, {""_q, ""_q}}));
}

TEST_F(MonitoringOperations, FailedIdsAndNamesLeaveTheList)
{
    QList<QPair<QString, QString>> cells;
    server.answerJson(401, R"({"message":"no","status":401})");
    EXPECT_FALSE(data.getCellIdAndName(cells));
    EXPECT_TRUE(cells.isEmpty());
}

} // namespace
