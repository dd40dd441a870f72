// What a reply with an error status holds reaches the outputs; no cache takes it.

#include "../../support/LibraryTest.h"

namespace {

class FailedReplies : public LibraryTest
{
protected:
    // An error status with the body of a success.
    void refuse(const QByteArray& body) { server.answerJson(500, body); }

    // Identifiers of a list that a failed read appends "x1" and "x2" to.
    template <typename Record, typename Read>
    QStringList idsAfter(const Read& read)
    {
        QList<Record> records{Record()};
        records.first().id = "before"_q;
        refuse(R"([{"_id":"x1","cellId":"c1"},{"_id":"x2","cellId":"c1"}])");
        EXPECT_FALSE(read(records));
        QStringList ids;
        for (const Record& record : records) {
            ids.append(record.id);
        }
        return ids;
    }
    const QStringList appended{"before"_q, "x1"_q, "x2"_q};

    // The count after a failed read.
    template <typename Read>
    int countAfter(const Read& read)
    {
        int count = -1;
        refuse(R"({"count":5})");
        EXPECT_FALSE(read(count));
        return count;
    }
};

TEST_F(FailedReplies, PermissionsFollowTheValue)
{
    using Permission = std::function<bool()>;
    for (const Permission& permission : {Permission([this] { return data.canCreateMonitoring("pit"_q); }),
                                         Permission([this] { return data.canDeleteMonitoring("pit"_q); }),
                                         Permission([this] { return data.canEditMonitoring("pit"_q); })}) {
        refuse(R"({"value":"true"})");
        EXPECT_TRUE(permission());
        refuse(R"({"value":"false"})");
        EXPECT_FALSE(permission());
    }
}

TEST_F(FailedReplies, MonitoringsTakeTheMembers)
{
    const QByteArray reply = R"({"_id":"c1","name":"Pit","category":"pit","alarmTo":["a@x"],"createdBy":"ann",
        "updatedAt":"2024-03-01T08:00:00.000Z","links":[{"type":"model","rId":"m1"}]})";
    using Operation = std::function<bool(RKMonitoring&)>;
    for (const Operation& operation :
         {Operation([this](RKMonitoring& record) { return data.createMonitoring(record); }),
          Operation([this](RKMonitoring& record) { return data.updateMonitoring(record); }),
          Operation(
              [this](RKMonitoring& record) { return data.getMonitoringById("c1"_q, record, false); })}) {
        RKMonitoring record;
        record.id = record.name = "before"_q;
        refuse(reply);
        EXPECT_FALSE(operation(record));
        EXPECT_EQ(record.id, "c1"_q);
        EXPECT_EQ(record.name, "Pit"_q);
        EXPECT_EQ(record.category, "pit"_q);
        EXPECT_EQ(record.alarmTo, QStringList{"a@x"_q});
        EXPECT_EQ(record.createdBy, "ann"_q);
        EXPECT_EQ(record.updatedAt, QDateTime(QDate(2024, 3, 1), QTime(8, 0), Qt::UTC));
        EXPECT_EQ(record.modelId, "m1"_q);
    }
    refuse(reply);
    EXPECT_TRUE(data.getMonitoringName("c1"_q).isNull()) << "not cached, and a name is of a success only";
}

TEST_F(FailedReplies, MonitoringListsGetTheRows)
{
    EXPECT_EQ(
        idsAfter<RKMonitoring>([this](auto& list) { return data.getMonitoringByModelId("m1"_q, list); }),
        appended);
    QList<QPair<QString, QString>> cells;
    refuse(R"([{"_id":"c1","name":"Pit"}])");
    EXPECT_FALSE(data.getCellIdAndName(cells));
    EXPECT_EQ(cells, (QList<QPair<QString, QString>>{{"c1"_q, "Pit"_q}}));
}

TEST_F(FailedReplies, AMonitoringPageGetsTheRowsButNotTheCache)
{
    server.answerJson(200, R"({"_id":"x1","name":"Cached"})");
    EXPECT_EQ(data.getMonitoringName("x1"_q), "Cached"_q);
    EXPECT_EQ(idsAfter<RKMonitoring>([this](auto& list) {
                  EXPECT_TRUE(data.getMonitoringRangeData({}, 0, 10, list));
                  return false;
              }),
              appended);
    EXPECT_EQ(data.getMonitoringName("x1"_q), "Cached"_q);
}

TEST_F(FailedReplies, CategoriesAreTheTextsAndThenASuccess)
{
    QStringList categories{"before"_q};
    refuse(R"(["pit","slope"])");
    EXPECT_TRUE(data.getMonitoringCategory(categories));
    EXPECT_EQ(categories, (QStringList{"pit"_q, "slope"_q}));
}

TEST_F(FailedReplies, SubCategoriesAreReplacedByTheRows)
{
    EXPECT_EQ(idsAfter<RKMonitoringSubCategory>(
                  [this](auto& list) { return data.getMonitoringSubCategory("pit"_q, list); }),
              (QStringList{"x1"_q, "x2"_q}));
    RKMonitoringSubCategory subCategory;
    refuse(R"({"_id":"x1","name":"Rain","category":"slope","alias":"R"})");
    EXPECT_FALSE(data.getSubCategoryById("x1"_q, subCategory)) << "not cached";
    EXPECT_EQ(subCategory.name, "Rain"_q);
    EXPECT_EQ(subCategory.alias, "R"_q);
    refuse("{}");
    EXPECT_FALSE(data.getSubCategoryById("x1"_q, subCategory)) << "still not cached";
}

TEST_F(FailedReplies, CountsAreTheCount)
{
    EXPECT_EQ(countAfter([this](int& count) { return data.getMonitoringRangeCount({}, count); }), 5);
    EXPECT_EQ(countAfter([this](int& count) { return data.getDataManageRangeCount({}, count); }), 5);
    EXPECT_EQ(countAfter([this](int& count) { return data.getHistoryRangeCount({}, count); }), 5);
    EXPECT_EQ(countAfter([this](int& count) { return data.getAlarmRangeCount({}, count); }), 5);
    EXPECT_EQ(countAfter([this](int& count) { return data.getAlarmDetailRangeCount({}, count); }), 5);
}

TEST_F(FailedReplies, PointListsGetTheRows)
{
    RKPointLocationCondition condition;
    condition.cellId = "c1"_q;
    const auto read = [&](auto& list) {
        return data.getPointLocation(condition, list, true);
    };
    EXPECT_EQ(idsAfter<RKPointLocation>(read), appended);
    EXPECT_EQ(idsAfter<RKPointLocation>(read), appended) << "asked again, as nothing was cached";
    EXPECT_EQ(
        idsAfter<RKPointLocation>([this](auto& list) { return data.getPointLocationByGuid("u1"_q, list); }),
        appended);
}

TEST_F(FailedReplies, PointsTakeTheMembers)
{
    RKPointLocation point;
    point.alias = "kept"_q;
    point.data = {{1, {}, 0.0, {}}};
    refuse(R"({"_id":"w1","name":"W1","alias":"other","data":[{"count":2}]})");
    EXPECT_FALSE(data.getPointLocationByPointId("w1"_q, point));
    EXPECT_EQ(point.name, "W1"_q);
    EXPECT_EQ(point.alias, "kept"_q);
    EXPECT_EQ(point.data.size(), 2);

    RKPointLocationCondition condition;
    point = RKPointLocation();
    refuse(R"([{"_id":"w2","name":"W2"},{"_id":"w3","name":"W3"}])");
    EXPECT_FALSE(data.getPointLocationByTimeOrder(condition, point));
    EXPECT_EQ(point.name, "W2"_q);
}

TEST_F(FailedReplies, StatisticsReplaceTheDays)
{
    using ChartData = QMap<QDate, QList<RKPointLocationChartData>>;
    using Statistics = std::function<bool(ChartData&)>;
    const QDate kept(2015, 12, 20);
    const QDate replaced(2015, 12, 21);
    for (const Statistics& statistics :
         {Statistics([this](ChartData& days) { return data.getNormalPointLocation({}, days); }),
          Statistics([this](ChartData& days) { return data.getDepthPointLocation({}, days); })}) {
        ChartData chartData{{kept, {RKPointLocationChartData()}}, {replaced, {}}};
        refuse(R"([{"time":"2015-12-21T00:00:00.000Z","data":[{"name":"W1"},{"name":"W2"}]}])");
        EXPECT_FALSE(statistics(chartData));
        EXPECT_EQ(chartData.value(kept).size(), 1);
        ASSERT_EQ(chartData.value(replaced).size(), 2);
        EXPECT_EQ(chartData.value(replaced).at(1).name, "W2"_q);
    }
}

TEST_F(FailedReplies, GroupsTakeTheMembers)
{
    const QByteArray reply =
        R"({"_id":"g1","cellId":"c1","groupName":"North","totalVar":30,"viewPortId":"v1"})";
    using Operation = std::function<bool(PointLocSetting&)>;
    for (const Operation& operation :
         {Operation([this](PointLocSetting& group) { return data.createGroup(group); }),
          Operation([this](PointLocSetting& group) { return data.updateGroup({}, group); })}) {
        PointLocSetting group;
        group.groupName = group.subCategoryId = "before"_q;
        refuse(reply);
        EXPECT_FALSE(operation(group));
        EXPECT_EQ(group.id, "g1"_q);
        EXPECT_EQ(group.groupName, "North"_q);
        EXPECT_EQ(group.totalVar, 30.0);
        EXPECT_EQ(group.viewPortId, "v1"_q);
        EXPECT_TRUE(group.subCategoryId.isEmpty());
    }
}

TEST_F(FailedReplies, GroupListsGetTheRows)
{
    EXPECT_EQ(
        idsAfter<PointLocSetting>([this](auto& list) { return data.getGroupsByCategory("pit"_q, list); }),
        appended);
    const auto read = [this](auto& list) {
        return data.getGroupsByCellId("c1"_q, list, true);
    };
    EXPECT_EQ(idsAfter<PointLocSetting>(read), appended);
    EXPECT_EQ(idsAfter<PointLocSetting>(read), appended) << "asked again, as nothing was cached";
}

TEST_F(FailedReplies, DataManagesAndHistoryGetTheRows)
{
    EXPECT_EQ(
        idsAfter<RKDataManage>([this](auto& list) { return data.getDataManageRangeData({}, 0, 10, list); }),
        appended);
    RKDataManage dataManage;
    EXPECT_FALSE(data.getDataManageById("x1"_q, dataManage)) << "not cached";

    QList<HistoryData> history;
    refuse(R"([{"insertCount":672},{"insertCount":671}])");
    EXPECT_FALSE(data.getHistoryRangeData({}, 0, 10, history));
    ASSERT_EQ(history.size(), 2);
    EXPECT_EQ(history.at(1).insertCount, 671);
}

TEST_F(FailedReplies, AlarmListsGetTheRows)
{
    EXPECT_EQ(idsAfter<RKAlarm>([this](auto& list) { return data.getAlarmRangeData({}, 0, 10, list); }),
              appended);
    EXPECT_EQ(
        idsAfter<RKAlarmDetail>([this](auto& list) { return data.getAlarmDetailRangeData({}, 0, 10, list); }),
        appended);
    EXPECT_EQ(
        idsAfter<AlarmThree>([this](auto& list) { return data.getAlarmThreeByDetailId("d1"_q, {}, list); }),
        appended);
}

} // namespace
