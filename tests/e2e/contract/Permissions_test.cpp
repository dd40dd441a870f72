#include "Contract.h"

#include <RKSoftCache.h>

// What the current user may do.

using PermissionContract = Contract;
using PermissionContractOfReader = ReaderContract;

TEST_F(PermissionContract, EditorMayCreateEditAndDelete)
{
    EXPECT_TRUE(data.canCreateMonitoring(category()));
    EXPECT_TRUE(data.canEditMonitoring(category()));
    EXPECT_TRUE(data.canDeleteMonitoring(category()));
}

TEST_F(PermissionContract, NothingIsPermittedInUnknownCategory)
{
    const QString unknown = mine("no such category"_q);
    EXPECT_FALSE(data.canCreateMonitoring(unknown));
    EXPECT_FALSE(data.canEditMonitoring(unknown));
    EXPECT_FALSE(data.canDeleteMonitoring(unknown));
}

TEST_F(PermissionContract, NothingIsPermittedInUnknownProject)
{
    GetSoftCache()->setProjectId("000000000000000000000000"_q);
    EXPECT_FALSE(data.canCreateMonitoring(category()));
    EXPECT_FALSE(data.canEditMonitoring(category()));
    EXPECT_FALSE(data.canDeleteMonitoring(category()));
    GetSoftCache()->setProjectId(deployment().project);
}

TEST_F(PermissionContractOfReader, ReaderMayNotCreateEditOrDelete)
{
    actAsReader();
    EXPECT_FALSE(data.canCreateMonitoring(category()));
    EXPECT_FALSE(data.canEditMonitoring(category()));
    EXPECT_FALSE(data.canDeleteMonitoring(category()));
}
