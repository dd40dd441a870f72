#include "../../support/LibraryTest.h"

#include <QJsonArray>

namespace {

class GroupOperations : public LibraryTest
{
protected:
    static QStringList ids(const QList<PointLocSetting>& groups)
    {
        QStringList list;
        for (const PointLocSetting& group : groups) {
            list.append(group.id);
        }
        return list;
    }
    // Reads groups of the cell "c1" into the cache.
    void readGroups(const QByteArray& answer)
    {
        QList<PointLocSetting> groups;
        server.answerJson(200, answer);
        EXPECT_TRUE(data.getGroupsByCellId("c1"_q, groups, false));
    }
    // The cached groups of a cell that has an entry; asks nothing.
    QList<PointLocSetting> cached(const QString& cellId)
    {
        QList<PointLocSetting> groups{PointLocSetting()};
        const int requests = server.requestCount();
        EXPECT_TRUE(data.getGroupsByCellId(cellId, groups, true));
        EXPECT_EQ(server.requestCount(), requests) << "the cell has no entry";
        return groups;
    }
    // Expects that a cell has no entry, by a request that fails.
    void expectNotCached(const QString& cellId)
    {
        QList<PointLocSetting> groups;
        const int requests = server.requestCount();
        server.answerJson(503, "{}");
        EXPECT_FALSE(data.getGroupsByCellId(cellId, groups, true));
        EXPECT_EQ(server.requestCount(), requests + 1);
    }
};

// ---- create

TEST_F(GroupOperations, CreateSendsTheRecordAndCachesTheServicesView)
{
    PointLocSetting group;
    group.cellId = "c1"_q;
    group.groupName = "North wall"_q;
    group.groupPoint = QStringList{"W1"_q};
    server.answerJson(
        200, R"({"_id":"g1","projectId":"p7","cellId":"c1","groupName":"North wall","createdBy":"ann"})");
    EXPECT_TRUE(data.createGroup(group));
    EXPECT_EQ(lastMethod(), "POST");
    EXPECT_EQ(lastPath(), "groupSettings"_q);
    EXPECT_EQ(lastBody().size(), 8);
    EXPECT_EQ(lastBody().value("groupPoint"_q).toArray(), QJsonArray{"W1"_q});
    EXPECT_EQ(group.id, "g1"_q);
    EXPECT_EQ(group.createdBy, "ann"_q);
    EXPECT_EQ(ids(cached("c1"_q)), QStringList{"g1"_q})
        << "a list of what was created, the cell never being read";
}

TEST_F(GroupOperations, CreateAppendsToTheCachedList)
{
    readGroups(R"([{"_id":"g1","cellId":"c1"}])");
    PointLocSetting group;
    server.answerJson(200, R"({"_id":"g2","cellId":"c1"})");
    EXPECT_TRUE(data.createGroup(group));
    EXPECT_EQ(ids(cached("c1"_q)), (QStringList{"g1"_q, "g2"_q}));
}

TEST_F(GroupOperations, CreateAnsweredWithoutACellIsFiledUnderTheEmptyKey)
{
    PointLocSetting group;
    group.cellId = "c1"_q;
    server.answerJson(200, R"({"_id":"g1"})");
    EXPECT_TRUE(data.createGroup(group));
    EXPECT_EQ(ids(cached(QString())), QStringList{"g1"_q});
    expectNotCached("c1"_q);
}

TEST_F(GroupOperations, AFailedCreateEmptiesTheRecordAndCachesNothing)
{
    PointLocSetting group;
    group.cellId = group.groupName = "c1"_q;
    server.answerJson(403, R"({"message":"no","status":403})");
    EXPECT_FALSE(data.createGroup(group));
    EXPECT_TRUE(group.cellId.isEmpty() && group.groupName.isEmpty());
    expectNotCached("c1"_q);
    expectNotCached(QString());
}

// ---- update

TEST_F(GroupOperations, UpdateSendsOnlyWhatChanged)
{
    readGroups(R"([{"_id":"g1","cellId":"c1","groupName":"North"},{"_id":"g2","cellId":"c1"},
                   {"_id":"g1","cellId":"c1","groupName":"North, again"}])");
    const PointLocSetting old = cached("c1"_q).first();
    PointLocSetting updated = old;
    updated.groupName = "South"_q;
    updated.projectId = "p8"_q;
    server.answerJson(200, R"({"_id":"g1","cellId":"c1","groupName":"South","updatedBy":"bo"})");
    EXPECT_TRUE(data.updateGroup(old, updated));
    EXPECT_EQ(lastMethod(), "PUT");
    EXPECT_EQ(lastPath(), "groupSettings/g1"_q);
    EXPECT_EQ(lastBody(), (QJsonObject{{"groupName"_q, "South"_q}})) << "never the project";
    EXPECT_EQ(updated.updatedBy, "bo"_q);
    const QList<PointLocSetting> groups = cached("c1"_q);
    ASSERT_EQ(groups.size(), 3);
    EXPECT_EQ(groups.at(0).groupName, "South"_q);
    EXPECT_EQ(groups.at(2).groupName, "North, again"_q) << "only the first match is replaced";
}

TEST_F(GroupOperations, UpdateSendsEveryMemberThatChanged)
{
    PointLocSetting old;
    old.id = "g1"_q;
    old.cellId = "c1"_q;
    old.subCategoryId = "s1"_q;
    old.groupName = "North"_q;
    old.groupPoint = QStringList{"W1"_q};
    old.dayVarType = 1;
    old.dayVarValue = 2.5;
    old.totalVar = 30;

    const auto expectSent = [&](const char* member, const QJsonValue& value, const auto& change) {
        PointLocSetting updated = old;
        change(updated);
        server.answerJson(200, R"({"_id":"g1"})");
        EXPECT_TRUE(data.updateGroup(old, updated));
        EXPECT_EQ(lastBody(), (QJsonObject{{QString::fromLatin1(member), value}}));
    };
    expectSent("cellId", "c2"_q, [](auto& group) { group.cellId = "c2"_q; });
    expectSent("subCategoryId", "s2"_q, [](auto& group) { group.subCategoryId = "s2"_q; });
    expectSent("groupName", "South"_q, [](auto& group) { group.groupName = "South"_q; });
    expectSent("groupPoint", QJsonArray{"W1"_q, "W2"_q},
               [](auto& group) { group.groupPoint.append("W2"_q); });
    expectSent("dayVarType", 0, [](auto& group) { group.dayVarType = 0; });
    expectSent("dayVarValue", 2.25, [](auto& group) { group.dayVarValue = 2.25; });
    expectSent("totalVar", 31, [](auto& group) { group.totalVar = 31; });
    EXPECT_EQ(server.requestCount(), 7);
}

TEST_F(GroupOperations, UpdateIsOfTheGroupThatTheUpdatedRecordNames)
{
    PointLocSetting old;
    old.id = "g1"_q;
    PointLocSetting updated;
    updated.id = "g2"_q;
    updated.groupName = "South"_q;
    server.answerJson(200, R"({"_id":"g2"})");
    EXPECT_TRUE(data.updateGroup(old, updated));
    EXPECT_EQ(lastPath(), "groupSettings/g2"_q);
}

TEST_F(GroupOperations, UpdateOfItsCellIsCachedInTheListOfTheNewCell)
{
    readGroups(R"([{"_id":"g1","cellId":"c1","groupName":"North"}])");
    PointLocSetting group;
    server.answerJson(200, R"({"_id":"g1","cellId":"c2","groupName":"Old copy"})");
    EXPECT_TRUE(data.createGroup(group));

    const PointLocSetting old = cached("c1"_q).first();
    PointLocSetting updated = old;
    updated.cellId = "asked for"_q;
    server.answerJson(200, R"({"_id":"g1","cellId":"c2","groupName":"Moved"})");
    EXPECT_TRUE(data.updateGroup(old, updated));
    EXPECT_EQ(cached("c2"_q).first().groupName, "Moved"_q);
    EXPECT_EQ(cached("c2"_q).size(), 1);
    EXPECT_EQ(cached("c1"_q).first().groupName, "North"_q) << "the list of the old cell is not looked at";
    expectNotCached("asked for"_q);
}

TEST_F(GroupOperations, UpdateWithoutAChangeSendsNothingAndTakesTheOldRecord)
{
    readGroups(R"([{"_id":"g1","cellId":"c1","groupName":"North","viewPortId":"v1"}])");
    PointLocSetting old = cached("c1"_q).first();
    old.viewPortId = "v2"_q;
    PointLocSetting updated = old;
    updated.viewPortId = "v3"_q;
    EXPECT_TRUE(data.updateGroup(old, updated));
    EXPECT_EQ(updated.viewPortId, "v2"_q);
    EXPECT_EQ(cached("c1"_q).first().viewPortId, "v2"_q);
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(GroupOperations, UpdateOfAGroupThatIsNotCachedAddsNothing)
{
    PointLocSetting old;
    old.cellId = "c1"_q;
    PointLocSetting updated = old;
    updated.id = "g1"_q;
    updated.totalVar = 30;
    server.answerJson(200, R"({"_id":"g1","cellId":"c1","totalVar":30})");
    EXPECT_TRUE(data.updateGroup(old, updated));
    EXPECT_TRUE(cached("c1"_q).isEmpty()) << "an entry, but an empty one";
}

TEST_F(GroupOperations, AFailedUpdateEmptiesTheRecordAndLeavesTheCache)
{
    readGroups(R"([{"_id":"g1","cellId":"c1","groupName":"North"}])");
    const PointLocSetting old = cached("c1"_q).first();
    PointLocSetting updated = old;
    updated.groupName = "South"_q;
    server.answerJson(409, R"({"message":"no","status":409})");
    EXPECT_FALSE(data.updateGroup(old, updated));
    EXPECT_TRUE(updated.id.isEmpty() && updated.groupName.isEmpty());
    EXPECT_EQ(cached("c1"_q).first().groupName, "North"_q);
    expectNotCached(QString());
}

// ---- delete

TEST_F(GroupOperations, DeleteRemovesEveryMatchFromTheListOfTheCellThatTheReplyNames)
{
    readGroups(R"([{"_id":"g1","cellId":"c1"},{"_id":"g2","cellId":"c1"},{"_id":"g1","cellId":"c1"},
                   {"_id":"g3","cellId":"c1"}])");
    server.answerJson(200, R"({"_id":"g1","cellId":"c1"})");
    EXPECT_TRUE(data.deleteGroup("g1"_q));
    EXPECT_EQ(lastMethod(), "DELETE");
    EXPECT_EQ(lastPath(), "groupSettings/g1"_q);
    EXPECT_EQ(ids(cached("c1"_q)), (QStringList{"g2"_q, "g3"_q}));
}

TEST_F(GroupOperations, DeleteAnsweredWithoutACellLeavesTheOtherLists)
{
    readGroups(R"([{"_id":"g1","cellId":"c1"}])");
    server.answerJson(200, "{}");
    EXPECT_TRUE(data.deleteGroup("g1"_q));
    EXPECT_EQ(ids(cached("c1"_q)), QStringList{"g1"_q});
    EXPECT_TRUE(cached(QString()).isEmpty());
}

TEST_F(GroupOperations, DeleteTakesTheIdOfACachedGroup)
{
    readGroups(R"([{"_id":"g1","cellId":"c1"},{"_id":"g2","cellId":"c1"}])");
    const QList<PointLocSetting> groups = cached("c1"_q);
    server.answerJson(200, R"({"cellId":"c1"})");
    EXPECT_TRUE(data.deleteGroup(groups.first().id));
    EXPECT_EQ(ids(cached("c1"_q)), QStringList{"g2"_q});
}

TEST_F(GroupOperations, AFailedDeleteLeavesTheCache)
{
    readGroups(R"([{"_id":"g1","cellId":"c1"}])");
    server.answerJson(500, R"({"message":"no","cellId":"c1"})");
    EXPECT_FALSE(data.deleteGroup("g1"_q));
    EXPECT_EQ(ids(cached("c1"_q)), QStringList{"g1"_q});
}

// ---- lists

TEST_F(GroupOperations, ByCategoryAppendsWithoutTouchingTheCache)
{
    QList<PointLocSetting> groups{PointLocSetting()};
    server.answerJson(200, R"([{"_id":"g1","cellId":"c1"},{"_id":"g2","cellId":"c2"}])");
    EXPECT_TRUE(data.getGroupsByCategory("pit \"A\""_q, groups));
    EXPECT_EQ(lastPath(), "projects/p7/groupSettings"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"category":"pit \"A\""})"_q}}));
    EXPECT_EQ(ids(groups), (QStringList{""_q, "g1"_q, "g2"_q}));
    expectNotCached("c1"_q);
}

TEST_F(GroupOperations, ByCellAsksOnceWhenTheCacheMayAnswer)
{
    QList<PointLocSetting> groups;
    server.answerJson(200, R"([{"_id":"g1","cellId":"c1"}])");
    EXPECT_TRUE(data.getGroupsByCellId("c1"_q, groups, true));
    EXPECT_EQ(lastPath(), "cells/c1/groupSettings"_q);
    EXPECT_TRUE(lastQuery().isEmpty());
    groups = {PointLocSetting(), PointLocSetting()};
    EXPECT_TRUE(data.getGroupsByCellId("c1"_q, groups, true));
    EXPECT_EQ(ids(groups), QStringList{"g1"_q}) << "the caller's list is replaced";
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(GroupOperations, ByCellWithoutTheCacheAlwaysAsksAndReplacesTheEntry)
{
    readGroups(R"([{"_id":"g1"}])");
    readGroups(R"([{"_id":"g2"}])");
    EXPECT_EQ(ids(cached("c1"_q)), QStringList{"g2"_q});
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(GroupOperations, ByCellCachesWhatTheCallerHadInTheList)
{
    QList<PointLocSetting> groups{PointLocSetting()};
    groups.first().id = "mine"_q;
    server.answerJson(200, R"([{"_id":"g1"}])");
    EXPECT_TRUE(data.getGroupsByCellId("c1"_q, groups, false));
    EXPECT_EQ(ids(cached("c1"_q)), (QStringList{"mine"_q, "g1"_q}));
}

TEST_F(GroupOperations, AFailedByCellCachesNothing)
{
    expectNotCached("c1"_q);
    expectNotCached("c1"_q);
}

TEST_F(GroupOperations, ClearForgetsTheGroups)
{
    readGroups(R"([{"_id":"g1"}])");
    data.clear();
    QList<PointLocSetting> groups;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getGroupsByCellId("c1"_q, groups, true));
    EXPECT_EQ(server.requestCount(), 2);
}

} // namespace
