#include "extensions/GroupSides.h"

#include "ScriptedExtensions.h"

namespace {

class GroupSidesTest : public ScriptedExtensions
{
protected:
    GroupSidesTest() { announceAll(); }

    const QJsonObject group =
        jsonObject(R"({"_id":"g1","dayVarSide":"rising","totalVarSide":"falling","warningLevel":75})");
};

} // namespace

TEST_F(GroupSidesTest, AreRead)
{
    answer(group);
    const GroupSides sides = service.groupSides("g1"_q);
    EXPECT_EQ(sides.daySide, LimitSide::Rising);
    EXPECT_EQ(sides.totalSide, LimitSide::Falling);
    EXPECT_EQ(sides.warningLevel, 75.0);
    EXPECT_EQ(lastRequest(), "GET groupSettings/g1");
}

TEST_F(GroupSidesTest, AreChangedInWhatIsSetAlone)
{
    answer(group);
    GroupSidesChange change;
    change.totalSide = LimitSide::Falling;
    EXPECT_TRUE(service.changeGroupSides("g1"_q, change).warnings.isEmpty());
    EXPECT_EQ(lastRequest(), "PUT groupSettings/g1");
    EXPECT_EQ(lastBody(), R"({"totalVarSide":"falling"})");
    answer(group);
    change.daySide = LimitSide::Both;
    change.warningLevel = 62.5;
    service.changeGroupSides("g1"_q, change);
    EXPECT_EQ(QJsonDocument::fromJson(lastBody()).object(),
              jsonObject(R"({"dayVarSide":"both","totalVarSide":"falling","warningLevel":62.5})"));
}

TEST_F(GroupSidesTest, ComeWithWhatTheServiceWarnsOf)
{
    QJsonObject warned = group;
    warned["warnings"_q] = QJsonArray{"the group has no limit"_q};
    answer(warned);
    const ChangedGroupSides changed = service.changeGroupSides("g1"_q, {});
    EXPECT_EQ(changed.daySide, LimitSide::Rising);
    EXPECT_EQ(changed.warnings, QStringList{"the group has no limit"_q});
}

TEST_F(GroupSidesTest, AreCheckedMemberByMember)
{
    const auto whole = [&](const QJsonObject& document) {
        answer(document);
    };
    QJsonObject warned = group;
    warned["warnings"_q] = QJsonArray();
    expectMembersAreChecked(group, whole, [&] { service.groupSides("g1"_q); });
    expectMembersAreChecked(warned, whole, [&] { service.changeGroupSides("g1"_q, {}); }, {}, {"warnings"_q});
    QJsonObject unknown = group;
    unknown["dayVarSide"_q] = "sideways"_q;
    answer(unknown);
    EXPECT_EQ(messageOf([&] { service.groupSides("g1"_q); }),
              "cannot read the sides of group g1: in the answer \"dayVarSide\" is neither both, rising nor "
              "falling");
}

TEST(LimitSide, HasTheTextOfTheService)
{
    EXPECT_EQ(textOf(LimitSide::Both), "both"_q);
    EXPECT_EQ(textOf(LimitSide::Rising), "rising"_q);
    EXPECT_EQ(textOf(LimitSide::Falling), "falling"_q);
    EXPECT_EQ(limitSideOf("rising"_q), LimitSide::Rising);
    EXPECT_EQ(limitSideOf("Rising"_q), std::nullopt);
    EXPECT_EQ(limitSideOf(QString()), std::nullopt);
}
