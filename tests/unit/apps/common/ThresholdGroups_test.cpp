#include "ThresholdGroups.h"

#include "DailyLimit.h"
#include "ScriptedSession.h"

namespace {

class ThresholdGroups : public ScriptedSession
{
};

} // namespace

TEST_F(ThresholdGroups, AreReadOfAMonitoring)
{
    server.answerJson(200, R"([{"_id":"g1","groupName":"Probes"}])");
    const QList<PointLocSetting> groups = groupsOfMonitoring(session, monitoring());
    ASSERT_EQ(groups.size(), 1);
    EXPECT_EQ(groups[0].id, "g1"_q);
}

TEST_F(ThresholdGroups, WithoutIdentifiersAreABadAnswer)
{
    server.answerJson(200, R"([{"groupName":"Probes"}])");
    EXPECT_EQ(failureOf([&] { groupsOfMonitoring(session, monitoring()); }), FailureKind::BadAnswer);
    server.answerJson(200, R"([{"groupName":"Probes"}])");
    EXPECT_EQ(failureOf([&] { groupsOfCategory(session, "Slope"_q); }), FailureKind::BadAnswer);
}

TEST_F(ThresholdGroups, DifferByPointsAndLimitsOnly)
{
    PointLocSetting group;
    group.groupPoint = QStringList{"W1"_q};
    group.dayVarType = daily::inPercent;
    group.dayVarValue = 4;
    group.totalVar = 0.5;
    PointLocSetting other = group;
    other.groupName = "other"_q;
    EXPECT_TRUE(hasSameLimits(group, other));
    other.dayVarType = daily::inUnits;
    EXPECT_FALSE(hasSameLimits(group, other));
}
