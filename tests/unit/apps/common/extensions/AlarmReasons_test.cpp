#include "extensions/AlarmReasons.h"

#include "DailyLimit.h"
#include "ScriptedExtensions.h"

namespace {

class AlarmReasons : public ScriptedExtensions
{
protected:
    AlarmReasons() { announceAll(); }

    const QJsonObject detail =
        jsonObject(R"({"_id":"d1","pointName":"S1","value":110.5,"reference":100,"unit":"mm","groupId":"g1",
                       "groupName":"North edge","totalLimit":10,"dayLimit":2,"totalVarSide":"both",
                       "dayVarSide":"falling","dayVarType":1})");
};

} // namespace

TEST_F(AlarmReasons, AreReadOfEveryDetail)
{
    answer(QJsonArray{detail});
    answer(jsonObject(R"({"count":1})"));
    const QList<AlarmReason> reasons = service.alarmReasons("a1"_q);
    ASSERT_EQ(reasons.size(), 1);
    EXPECT_EQ(reasons[0].id, "d1"_q);
    EXPECT_EQ(reasons[0].pointName, "S1"_q);
    EXPECT_EQ(reasons[0].value, 110.5);
    EXPECT_EQ(reasons[0].reference, 100.0);
    EXPECT_EQ(reasons[0].unit, "mm"_q);
    EXPECT_EQ(reasons[0].groupId, "g1"_q);
    EXPECT_EQ(reasons[0].groupName, "North edge"_q);
    EXPECT_EQ(reasons[0].totalLimit, 10.0);
    EXPECT_EQ(reasons[0].dayLimit, 2.0);
    EXPECT_EQ(reasons[0].totalSide, LimitSide::Both);
    EXPECT_EQ(reasons[0].daySide, LimitSide::Falling);
    EXPECT_EQ(reasons[0].dayVarType, daily::inPercent);
    EXPECT_EQ(lastRequest(), "GET alarmManages/a1/alarmDetails");
}

TEST_F(AlarmReasons, AreCheckedMemberByMember)
{
    expectMembersAreChecked(
        detail, [&](const QJsonObject& document) { answer(QJsonArray{document}); },
        [&] { service.alarmReasons("a1"_q); });
}
