#include "query/WhereBuilder.h"

#include "../../support/Text.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

namespace {

QDateTime utc(int year, int month, int day, int hour = 0, int minute = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute), Qt::UTC);
}

// A condition whose period is March 2024.
template <typename Condition>
Condition inMarch()
{
    Condition condition;
    condition.isAllTime = false;
    condition.startTime = utc(2024, 3, 1);
    condition.endTime = utc(2024, 3, 31);
    return condition;
}

const QString march = "{\"$gte\":\"2024-03-01T00:00:00.000Z\",\"$lt\":\"2024-04-01T00:00:00.000Z\"}"_q;

struct Case
{
    const char* name;
    QString where;
    const char* expected;
};

void PrintTo(const Case& example, std::ostream* out)
{
    *out << example.name;
}

class WhereBuilderTable : public testing::TestWithParam<Case>
{
};

TEST_P(WhereBuilderTable, GivesTheExpectedText)
{
    EXPECT_EQ(GetParam().where, QString::fromUtf8(GetParam().expected));
}

template <typename Condition, typename Fill>
QString whereOf(Fill fill)
{
    Condition condition;
    fill(condition);
    return rk::buildWhere(condition);
}

INSTANTIATE_TEST_SUITE_P(
    Monitoring, WhereBuilderTable,
    testing::Values(
        Case{"Nothing", rk::buildWhere(RKMonitoringCondition()), "{}"},
        Case{"Name", whereOf<RKMonitoringCondition>([](auto& c) { c.name = "ab"_q; }),
             R"({"name":{"$options":"i","$regex":"ab"}})"},
        Case{"ExactName", whereOf<RKMonitoringCondition>([](auto& c) { c.exactName = "Abc"_q; }),
             R"({"name":"Abc"})"},
        Case{"ExactNameWinsOverName", whereOf<RKMonitoringCondition>([](auto& c) {
                 c.name = "ab"_q;
                 c.exactName = "Abc"_q;
             }),
             R"({"name":"Abc"})"},
        Case{"ModelBringsARider", whereOf<RKMonitoringCondition>([](auto& c) { c.modelId = "m1"_q; }),
             R"({"links.rId":"m1"}&expand=true)"},
        Case{"PatternCharactersUnchanged",
             whereOf<RKMonitoringCondition>([](auto& c) { c.name = "a.b (x"_q; }),
             R"({"name":{"$options":"i","$regex":"a.b (x"}})"},
        Case{"QuotesAndBackslashesAreJson",
             whereOf<RKMonitoringCondition>([](auto& c) { c.exactName = "a\"b\\c"_q; }),
             R"({"name":"a\"b\\c"})"},
        Case{"OtherScripts", whereOf<RKMonitoringCondition>([](auto& c) { c.exactName = "基坑 é"_q; }),
             R"({"name":"基坑 é"})"},
        Case{"KeysAreSorted", whereOf<RKMonitoringCondition>([](auto& c) {
                 c = inMarch<RKMonitoringCondition>();
                 c.modelId = "m1"_q;
                 c.exactName = "n"_q;
             }),
             R"({"createdAt":{"$gte":"2024-03-01T00:00:00.000Z","$lt":"2024-04-01T00:00:00.000Z"},)"
             R"("links.rId":"m1","name":"n"}&expand=true)"}));

INSTANTIATE_TEST_SUITE_P(
    Alarm, WhereBuilderTable,
    testing::Values(
        Case{"Nothing", rk::buildWhere(RKAlarmCondition()), "{}"},
        Case{"CellsAndName", whereOf<RKAlarmCondition>([](auto& c) {
                 c.name = "K1"_q;
                 c.isAllCell = false;
                 c.cellIds = QStringList{"c1"_q, "c2"_q};
             }),
             R"({"cellId":{"$in":["c1","c2"]},"name":{"$options":"i","$regex":"K1"}})"},
        Case{"AllCellsIgnoresTheList",
             whereOf<RKAlarmCondition>([](auto& c) { c.cellIds = QStringList{"c1"_q}; }), "{}"},
        Case{"NoCellsIsNoRestriction", whereOf<RKAlarmCondition>([](auto& c) { c.isAllCell = false; }), "{}"},
        Case{"AllCategoriesIgnoresBothLists", whereOf<RKAlarmCondition>([](auto& c) {
                 c.categories = QStringList{"wall"_q};
                 c.subCategories = QStringList{"top"_q};
             }),
             "{}"},
        Case{"OnlySubCategories", whereOf<RKAlarmCondition>([](auto& c) {
                 c.isAllCategory = false;
                 c.subCategories = QStringList{"top"_q};
             }),
             R"({"subCategory":{"$in":["top"]}})"},
        Case{"BothCategoryLists", whereOf<RKAlarmCondition>([](auto& c) {
                 c.isAllCategory = false;
                 c.categories = QStringList{"wall"_q, "pit"_q};
                 c.subCategories = QStringList{"top"_q};
             }),
             R"({"category":{"$in":["wall","pit"]},"subCategory":{"$in":["top"]}})"},
        Case{"KeysAreSorted", whereOf<RKAlarmCondition>([](auto& c) {
                 c = inMarch<RKAlarmCondition>();
                 c.name = "n"_q;
                 c.isAllCell = false;
                 c.cellIds = QStringList{"c"_q};
                 c.isAllCategory = false;
                 c.categories = QStringList{"k"_q};
                 c.subCategories = QStringList{"s"_q};
             }),
             R"({"category":{"$in":["k"]},"cellId":{"$in":["c"]},)"
             R"("createdAt":{"$gte":"2024-03-01T00:00:00.000Z","$lt":"2024-04-01T00:00:00.000Z"},)"
             R"("name":{"$options":"i","$regex":"n"},"subCategory":{"$in":["s"]}})"}));

INSTANTIATE_TEST_SUITE_P(
    AlarmDetail, WhereBuilderTable,
    testing::Values(
        Case{"Nothing", rk::buildWhere(RKAlarmDetailCondition()), "{}"},
        Case{"PointName", whereOf<RKAlarmDetailCondition>([](auto& c) { c.pointName = "W1"_q; }),
             R"({"pointName":{"$options":"i","$regex":"W1"}})"},
        Case{"AlarmIsNotInTheDocument",
             whereOf<RKAlarmDetailCondition>([](auto& c) { c.alarmManId = "a"_q; }), "{}"},
        Case{"Period", rk::buildWhere(inMarch<RKAlarmDetailCondition>()),
             R"({"monitorTime":{"$gte":"2024-03-01T00:00:00.000Z","$lt":"2024-04-01T00:00:00.000Z"}})"}));

INSTANTIATE_TEST_SUITE_P(
    DataManage, WhereBuilderTable,
    testing::Values(
        Case{"Nothing", rk::buildWhere(RKDataManageCondition()), "{}"},
        Case{"CategoryIsAPattern", whereOf<RKDataManageCondition>([](auto& c) {
                 c.category = "wall"_q;
                 c.cellId = "c1"_q;
             }),
             R"({"category":{"$options":"i","$regex":"wall"},"cellId":"c1"})"},
        Case{"Period", rk::buildWhere(inMarch<RKDataManageCondition>()),
             R"({"createdAt":{"$gte":"2024-03-01T00:00:00.000Z","$lt":"2024-04-01T00:00:00.000Z"}})"}));

INSTANTIATE_TEST_SUITE_P(
    PointLocation, WhereBuilderTable,
    testing::Values(
        Case{"Nothing", rk::buildWhere(RKPointLocationCondition()), "{}"},
        Case{"OnlyTimeFlagA", whereOf<RKPointLocationCondition>([](auto& c) { c.onlyTimeFlagA = true; }),
             R"({"data.timeFlag":"A"})"},
        Case{"Names", whereOf<RKPointLocationCondition>([](auto& c) {
                 c.cellId = "c1"_q;
                 c.names = QStringList{"b"_q, "a"_q, "b"_q};
             }),
             R"({"cellId":"c1","name":{"$in":["b","a","b"]}})"},
        Case{"AListOfAnEmptyTextIsNotEmpty",
             whereOf<RKPointLocationCondition>([](auto& c) { c.names = QStringList{QString()}; }),
             R"({"name":{"$in":[""]}})"},
        Case{"RemarkIsNotInTheDocument", whereOf<RKPointLocationCondition>([](auto& c) { c.remark = "x"_q; }),
             "{}"},
        Case{"Period", rk::buildWhere(inMarch<RKPointLocationCondition>()),
             R"({"time":{"$gte":"2024-03-01T00:00:00.000Z","$lt":"2024-04-01T00:00:00.000Z"}})"}));

TEST(WhereBuilder, HistoryPeriodIsOfTheLastChangeOnlyForTimeTypeTwo)
{
    auto condition = inMarch<RKHistoryDataCondition>();
    condition.timeType = 2;
    EXPECT_EQ(rk::buildWhere(condition), "{\"updatedAt\":"_q + march + "}"_q);
    for (const qint32 other : {0, 1, 3, -1}) {
        condition.timeType = other;
        EXPECT_EQ(rk::buildWhere(condition), "{\"lastDate\":"_q + march + "}"_q) << other;
    }
}

TEST(WhereBuilder, HistoryOfAllTimeIsEmptyWhateverTheTimeType)
{
    RKHistoryDataCondition condition;
    condition.dataManageId = "d1"_q;
    condition.remark = "x"_q;
    for (const qint32 timeType : {0, 1, 2, 3}) {
        condition.timeType = timeType;
        EXPECT_EQ(rk::buildWhere(condition), "{}"_q);
    }
}

TEST(WhereBuilder, TheEndOfThePeriodKeepsItsTimeOfDay)
{
    auto condition = inMarch<RKMonitoringCondition>();
    condition.endTime = utc(2024, 3, 31, 18, 30);
    const QJsonObject clause = rk::timeRangeClause(condition);
    EXPECT_EQ(clause.value("$gte"_q).toString(), "2024-03-01T00:00:00.000Z"_q);
    EXPECT_EQ(clause.value("$lt"_q).toString(), "2024-04-01T18:30:00.000Z"_q);
    EXPECT_EQ(clause.size(), 2);
}

TEST(WhereBuilder, AnInvalidPeriodIsSentAsItIs)
{
    RKMonitoringCondition condition;
    condition.isAllTime = false;
    EXPECT_EQ(rk::buildWhere(condition), R"({"createdAt":{"$gte":"","$lt":""}})"_q);
}

TEST(WhereBuilder, AMarkerInATextIsNotEscaped)
{
    RKMonitoringCondition condition;
    condition.name = "5%1"_q;
    EXPECT_EQ(rk::buildWhere(condition), R"({"name":{"$options":"i","$regex":"5%1"}})"_q);
}

TEST(WhereBuilder, ControlsAndEmojiSurviveAsJson)
{
    const QString text = QString::fromUtf8("a\tb\n\x01 \xF0\x9F\x98\x80");
    const QString where = rk::whereEquals(QLatin1String("category"), text);
    EXPECT_EQ(QJsonDocument::fromJson(where.toUtf8()).object().value("category"_q).toString(), text);
}

TEST(WhereBuilder, AnEmptyValueIsAskedForAsSuch)
{
    EXPECT_EQ(rk::whereEquals(QLatin1String("category"), QString()), R"({"category":""})"_q);
}

TEST(WhereBuilder, MembershipKeepsTheOrderOfTheList)
{
    EXPECT_EQ(rk::membershipClause({"b"_q, "a"_q}).value("$in"_q).toArray(), (QJsonArray{"b"_q, "a"_q}));
}

} // namespace
