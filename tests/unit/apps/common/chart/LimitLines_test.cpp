#include "chart/LimitLines.h"

#include "ScriptedSession.h"

namespace {

const chart::Words& words = chart::englishWords();

chart::LimitingGroup group(const QStringList& names, double total)
{
    chart::LimitingGroup made;
    made.setting.cellId = "c1"_q;
    made.setting.subCategoryId = "s1"_q;
    made.setting.groupPoint = names;
    made.setting.totalVar = total;
    return made;
}

Chart chartOf(const QStringList& names)
{
    Chart chart;
    chart.panels = {{"s1"_q, "Settlement"_q, {}, {}, {}, {}}};
    for (const QString& name : names) {
        Chart::Curve curve;
        curve.label = curve.pointName = name;
        curve.pointId = "id of "_q + name;
        curve.cellId = "c1"_q;
        curve.points = {{0.0, 1.0}, {1.0, 2.0}};
        chart.panels[0].curves.append(curve);
    }
    return chart;
}

chart::ReferenceOf always(double reference)
{
    return [reference](const QString&) {
        return std::make_optional(reference);
    };
}

QStringList textsOf(const Chart& chart)
{
    QStringList texts;
    for (const Chart::Limit& limit : chart.panels[0].limits) {
        texts.append("%1 at %2"_q.arg(limit.label).arg(limit.value));
    }
    return texts;
}

bool limitsS1(const PointLocSetting& group)
{
    return chart::limitsPointOf(chartOf({"S1"_q}), group);
}

class LimitLines : public ScriptedSession
{
protected:
};

} // namespace

TEST_F(LimitLines, LieAboutTheReference)
{
    Chart drawn = chartOf({"S1"_q});
    chart::addLimits(drawn, words, chart::Values::Measured, {group({"S1"_q}, 10.0), group({"S1"_q}, 0.0)},
                     always(0.5));
    EXPECT_EQ(textsOf(drawn), (QStringList{"limit +10 at 10.5"_q, QString::fromUtf8("limit −10 at -9.5")}));
    EXPECT_EQ(drawn.panels[0].limits[0].curve, Chart::Limit::everyCurve);
}

TEST_F(LimitLines, OfVariationsLieAboutZeroAndAreThereOnce)
{
    Chart drawn = chartOf({"S1"_q, "S2"_q, "S3"_q});
    chart::addLimits(drawn, words, chart::Values::Cumulative,
                     {group({"S1"_q, "S2"_q}, 10.0), group({"S3"_q, "S1"_q}, 10.0)}, always(7.0));
    EXPECT_EQ(textsOf(drawn), (QStringList{"limit +10 at 10"_q, QString::fromUtf8("limit −10 at -10")}));
    EXPECT_EQ(drawn.panels[0].limits[0].curve, Chart::Limit::everyCurve);
}

TEST_F(LimitLines, AreThoseOfACurveWhereReferencesDiffer)
{
    Chart drawn = chartOf({"S1"_q, "S2"_q});
    chart::addLimits(drawn, words, chart::Values::Measured, {group({"S1"_q, "S2"_q}, 10.0)},
                     [](const QString& id) { return std::make_optional(id == "id of S1"_q ? 0.0 : 1.0); });
    EXPECT_EQ(textsOf(drawn),
              (QStringList{"S1: limit +10 at 10"_q, QString::fromUtf8("S1: limit −10 at -10"),
                           "S2: limit +10 at 11"_q, QString::fromUtf8("S2: limit −10 at -9")}));
    EXPECT_EQ(drawn.panels[0].limits[3].curve, 1);
}

TEST_F(LimitLines, AreOfTheSidesThatTheGroupSays)
{
    chart::LimitingGroup rising = group({"S1"_q}, 10.0);
    rising.sides.totalSide = LimitSide::Rising;
    rising.sides.warningLevel = 80.0;
    Chart drawn = chartOf({"S1"_q});
    chart::addLimits(drawn, words, chart::Values::Measured, {rising}, always(1.0));
    EXPECT_EQ(textsOf(drawn), (QStringList{"limit +10 at 11"_q, "warning +8 at 9"_q}));
    EXPECT_FALSE(drawn.panels[0].limits[0].isWarning);
    EXPECT_TRUE(drawn.panels[0].limits[1].isWarning);

    rising.sides.totalSide = LimitSide::Falling;
    rising.sides.warningLevel = 100.0;
    drawn = chartOf({"S1"_q});
    chart::addLimits(drawn, words, chart::Values::Measured, {rising}, always(1.0));
    EXPECT_EQ(textsOf(drawn), QStringList{QString::fromUtf8("limit −10 at -9")});
}

TEST_F(LimitLines, OfDailyVariationsAreDailyLimits)
{
    chart::LimitingGroup daily = group({"S1"_q}, 10.0);
    daily.setting.dayVarValue = 2.0;
    Chart drawn = chartOf({"S1"_q});
    chart::addLimits(drawn, words, chart::Values::Daily, {daily}, always(-50.0));
    EXPECT_EQ(textsOf(drawn), (QStringList{"limit +2 at 2"_q, QString::fromUtf8("limit −2 at -2")}));

    daily.setting.dayVarType = 1; // percent of the amount of the reference
    drawn = chartOf({"S1"_q});
    chart::addLimits(drawn, words, chart::Values::Daily, {daily}, always(-50.0));
    EXPECT_EQ(textsOf(drawn), (QStringList{"limit +1 at 1"_q, QString::fromUtf8("limit −1 at -1")}));
    drawn = chartOf({"S1"_q});
    chart::addLimits(drawn, words, chart::Values::Daily, {daily},
                     [](const QString&) { return std::optional<double>(); });
    EXPECT_EQ(textsOf(drawn), QStringList());
}

TEST_F(LimitLines, AreOnlyThoseOfTheirSubCategory)
{
    chart::LimitingGroup other = group({"S1"_q}, 10.0);
    other.setting.subCategoryId = "s2"_q;
    Chart drawn = chartOf({"S1"_q});
    chart::addLimits(drawn, words, chart::Values::Measured, {other}, always(1.0));
    EXPECT_EQ(textsOf(drawn), QStringList());
}

TEST_F(LimitLines, AreOnlyThoseOfTheirMonitoring)
{
    chart::LimitingGroup other = group({"S1"_q}, 10.0);
    other.setting.cellId = "c2"_q;
    Chart drawn = chartOf({"S1"_q});
    chart::addLimits(drawn, words, chart::Values::Measured, {other}, always(1.0));
    EXPECT_EQ(textsOf(drawn), QStringList());
}

TEST_F(LimitLines, WarningsGiveWayToManyLimits)
{
    chart::LimitingGroup warned = group({"S1"_q, "S2"_q, "S3"_q}, 10.0);
    warned.sides.warningLevel = 80.0;
    Chart drawn = chartOf({"S1"_q, "S2"_q, "S3"_q});
    double reference = 0.0;
    chart::addLimits(drawn, words, chart::Values::Measured, {warned},
                     [&](const QString&) { return std::make_optional(reference += 1.0); });
    EXPECT_EQ(drawn.panels[0].limits.size(), 6);
}

TEST_F(LimitLines, OfManyReferencesAreLeftOut)
{
    const QStringList names{"S1"_q, "S2"_q, "S3"_q, "S4"_q};
    double reference = 0.0;
    const auto everyOther = [&](const QString&) {
        return std::make_optional(reference += 1.0);
    };
    Chart drawn = chartOf(names);
    EXPECT_FALSE(chart::addLimits(drawn, words, chart::Values::Measured, {group(names, 10.0)}, everyOther));
    EXPECT_TRUE(drawn.panels[0].limits.isEmpty());
    EXPECT_TRUE(chart::addLimits(drawn, words, chart::Values::Cumulative, {group(names, 10.0)}, everyOther));
    EXPECT_EQ(drawn.panels[0].limits.size(), 2);
}

TEST_F(LimitLines, NeedGroupsThatListAPoint)
{
    server.answerJson(404, R"({"message":"nothing here","status":404})"); // what the service can
    server.answerJson(
        200, R"([{"_id":"g1","cellId":"c1","subCategoryId":"s1","groupPoint":["elsewhere"],"totalVar":1},
                               {"_id":"g2","cellId":"c1","subCategoryId":"s2","groupPoint":["S1"],"totalVar":1},
                               {"_id":"g3","cellId":"c1","subCategoryId":"s1","groupPoint":["S1"],"totalVar":1}])");
    const auto groups = chart::limitingGroups(session, monitoring(), limitsS1);
    ASSERT_EQ(groups.size(), 1);
    EXPECT_EQ(groups[0].setting.id, "g3"_q);
    EXPECT_EQ(groups[0].sides.totalSide, LimitSide::Both);
}

TEST_F(LimitLines, HaveTheSidesThatTheServiceTells)
{
    server.answerJson(200, R"({"name":"monitor-service","version":"1","extensions":["groupSides"],
                               "owner":"a","rights":[]})");
    server.answerJson(
        200, R"([{"_id":"g1","cellId":"c1","subCategoryId":"s1","groupPoint":["S1"],"totalVar":1}])");
    server.answerJson(200, R"({"_id":"g1","dayVarSide":"both","totalVarSide":"falling","warningLevel":70})");
    const auto groups = chart::limitingGroups(session, monitoring(), limitsS1);
    ASSERT_EQ(groups.size(), 1);
    EXPECT_EQ(groups[0].sides.totalSide, LimitSide::Falling);
    EXPECT_EQ(groups[0].sides.warningLevel, 70.0);
}

TEST_F(LimitLines, OverDepthHoldForTheWholeProfile)
{
    chart::LimitingGroup limiting = group({"I1"_q}, 40.0);
    limiting.sides.warningLevel = 75.0;
    limiting.sides.totalSide = LimitSide::Rising;
    Chart drawn = chartOf({"2026-03-02"_q, "2026-03-03"_q});
    chart::addLimitsOverDepth(drawn, chart::chineseWords(), {limiting, group({"I2"_q}, 5.0)}, "I1"_q);
    EXPECT_EQ(textsOf(drawn),
              (QStringList{QString::fromUtf8("限值 +40 at 40"), QString::fromUtf8("预警值 +30 at 30")}));
}
