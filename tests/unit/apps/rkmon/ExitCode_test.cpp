#include "ExitCode.h"

#include <gtest/gtest.h>

TEST(ExitCode, FollowsFromTheKindOfFailure)
{
    EXPECT_EQ(static_cast<int>(exitCodeOf(FailureKind::Refused)), 1);
    EXPECT_EQ(static_cast<int>(exitCodeOf(FailureKind::BadAnswer)), 1);
    EXPECT_EQ(static_cast<int>(exitCodeOf(FailureKind::Other)), 1);
    EXPECT_EQ(static_cast<int>(exitCodeOf(FailureKind::BadInput)), 2);
    EXPECT_EQ(static_cast<int>(exitCodeOf(FailureKind::Cancelled)), 130);
    EXPECT_EQ(static_cast<int>(exitCodeOf(FailureKind::NotPermitted)), 3);
    EXPECT_EQ(static_cast<int>(exitCodeOf(FailureKind::NotFound)), 4);
    EXPECT_EQ(static_cast<int>(exitCodeOf(FailureKind::NoConnection)), 5);
}
