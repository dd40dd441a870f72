#include "Contract.h"

// Groups of points with their limits of variation.

namespace {

class GroupContract : public Contract
{
protected:
    PointLocSetting createdGroup(const QString& cellId, const QString& name)
    {
        PointLocSetting group;
        group.cellId = cellId;
        group.subCategoryId = subCategories().first().id;
        group.groupName = name;
        group.groupPoint = QStringList{"S1"_q, "S2 & \"S3\""_q};
        group.dayVarType = 1;
        group.dayVarValue = 2.5;
        group.totalVar = 10.125;
        EXPECT_TRUE(data.createGroup(group)) << lastErrorText();
        return group;
    }

    QList<PointLocSetting> groupsOf(const QString& cellId)
    {
        QList<PointLocSetting> groups;
        EXPECT_TRUE(data.getGroupsByCellId(cellId, groups, false)) << lastErrorText();
        return groups;
    }
};

void expectEqual(const PointLocSetting& left, const PointLocSetting& right)
{
    EXPECT_EQ(left.id, right.id);
    EXPECT_EQ(left.projectId, right.projectId);
    EXPECT_EQ(left.cellId, right.cellId);
    EXPECT_EQ(left.subCategoryId, right.subCategoryId);
    EXPECT_EQ(left.groupName, right.groupName);
    EXPECT_EQ(left.groupPoint, right.groupPoint);
    EXPECT_EQ(left.dayVarType, right.dayVarType);
    EXPECT_EQ(left.dayVarValue, right.dayVarValue);
    EXPECT_EQ(left.totalVar, right.totalVar);
    EXPECT_EQ(left.createdAt, right.createdAt);
    EXPECT_EQ(left.createdBy, right.createdBy);
    EXPECT_EQ(left.updatedAt, right.updatedAt);
    EXPECT_EQ(left.updatedBy, right.updatedBy);
}

} // namespace

TEST_F(GroupContract, WhatIsCreatedComesBack)
{
    const RKMonitoring monitoring = created("VH"_q);
    const PointLocSetting group = createdGroup(monitoring.id, "Corner 角"_q);
    EXPECT_EQ(group.id.size(), 24);
    EXPECT_EQ(group.projectId, deployment().project);
    EXPECT_EQ(group.cellId, monitoring.id);
    EXPECT_EQ(group.groupName, "Corner 角"_q);
    EXPECT_EQ(group.groupPoint, (QStringList{"S1"_q, "S2 & \"S3\""_q}));
    EXPECT_EQ(group.dayVarType, 1);
    EXPECT_EQ(group.dayVarValue, 2.5);
    EXPECT_EQ(group.totalVar, 10.125);
    EXPECT_EQ(group.createdBy, monitoring.createdBy);

    const QList<PointLocSetting> read = groupsOf(monitoring.id);
    ASSERT_EQ(read.size(), 1);
    expectEqual(read.first(), group);
}

TEST_F(GroupContract, UpdateSendsOnlyWhatChanged)
{
    const RKMonitoring monitoring = created("VH"_q);
    const PointLocSetting old = createdGroup(monitoring.id, "Corner"_q);
    // Somebody else moves the total limit meanwhile.
    PointLocSetting theirs = old;
    theirs.totalVar = 20;
    ASSERT_TRUE(data.updateGroup(old, theirs)) << lastErrorText();

    PointLocSetting updated = old;
    updated.groupName = "Edge"_q;
    updated.groupPoint = QStringList{"S9"_q};
    ASSERT_TRUE(data.updateGroup(old, updated)) << lastErrorText();
    EXPECT_EQ(updated.groupName, "Edge"_q);
    EXPECT_EQ(updated.groupPoint, QStringList{"S9"_q});
    EXPECT_EQ(updated.totalVar, 20);
    const QList<PointLocSetting> read = groupsOf(monitoring.id);
    ASSERT_EQ(read.size(), 1);
    expectEqual(read.first(), updated);
}

TEST_F(GroupContract, UnchangedUpdateSendsNothing)
{
    const PointLocSetting old = createdGroup(created("VH"_q).id, "Corner"_q);
    const int before = requestCount();
    PointLocSetting updated = old;
    EXPECT_TRUE(data.updateGroup(old, updated));
    EXPECT_EQ(requestCount(), before);
}

TEST_F(GroupContract, ListsThoseOfTheMonitoringInOrderOfCreation)
{
    const QString first = created("VH"_q).id;
    const QString second = created("LS-a"_q).id;
    const PointLocSetting a = createdGroup(first, "z"_q);
    const PointLocSetting b = createdGroup(second, "y"_q);
    const PointLocSetting c = createdGroup(first, "x"_q);
    EXPECT_EQ(idsOf(groupsOf(first)), (QStringList{a.id, c.id}));
    EXPECT_EQ(idsOf(groupsOf(second)), QStringList{b.id});

    const int before = requestCount();
    QList<PointLocSetting> cached;
    EXPECT_TRUE(data.getGroupsByCellId(first, cached, true));
    EXPECT_EQ(idsOf(cached), (QStringList{a.id, c.id}));
    EXPECT_EQ(requestCount(), before);
}

TEST_F(GroupContract, ListsThoseOfTheCategory)
{
    const QString cellId = created("VH"_q).id;
    const QStringList expected{createdGroup(cellId, "a"_q).id, createdGroup(cellId, "b"_q).id};
    QList<PointLocSetting> groups;
    ASSERT_TRUE(data.getGroupsByCategory(category(), groups)) << lastErrorText();
    QStringList ours;
    for (const PointLocSetting& group : qAsConst(groups)) {
        if (group.cellId == cellId) {
            ours.append(group.id);
        }
    }
    EXPECT_EQ(ours, expected);

    QList<PointLocSetting> none;
    EXPECT_TRUE(data.getGroupsByCategory(mine("no such category"_q), none));
    EXPECT_TRUE(none.isEmpty());
}

TEST_F(GroupContract, DeletedIsGoneFromServiceAndCache)
{
    const QString cellId = created("VH"_q).id;
    const PointLocSetting gone = createdGroup(cellId, "a"_q);
    const PointLocSetting kept = createdGroup(cellId, "b"_q);
    ASSERT_TRUE(data.deleteGroup(gone.id)) << lastErrorText();
    QList<PointLocSetting> cached;
    EXPECT_TRUE(data.getGroupsByCellId(cellId, cached, true));
    EXPECT_EQ(idsOf(cached), QStringList{kept.id});
    EXPECT_EQ(idsOf(groupsOf(cellId)), QStringList{kept.id});
    EXPECT_FALSE(data.deleteGroup(gone.id));
    EXPECT_EQ(lastStatus(), 404);
}

TEST_F(GroupContract, RefusedIsEmptied)
{
    PointLocSetting group;
    group.cellId = created("VH"_q).id;
    group.subCategoryId = "000000000000000000000000"_q;
    group.groupName = "Corner"_q;
    const QString cellId = group.cellId;
    EXPECT_FALSE(data.createGroup(group));
    EXPECT_TRUE(group.groupName.isEmpty());
    EXPECT_TRUE(group.cellId.isEmpty());
    EXPECT_TRUE(groupsOf(cellId).isEmpty());
}
