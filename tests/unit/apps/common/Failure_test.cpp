#include "Failure.h"

#include "Text.h"

#include <gtest/gtest.h>

TEST(Failure, ExtensionKeepsKindAndRemedy)
{
    const Failure failure =
        Failure(FailureKind::NoConnection, "cannot list: no answer"_q, Remedy::ExtendDeadline)
            .extended("it can be repeated"_q);
    EXPECT_EQ(failure.kind(), FailureKind::NoConnection);
    EXPECT_EQ(failure.remedy(), Remedy::ExtendDeadline);
    EXPECT_EQ(failure.message(), "cannot list: no answer; it can be repeated"_q);
}

TEST(Failure, MessageKeepsEveryScript)
{
    EXPECT_EQ(Failure(FailureKind::Other, "边坡 – é"_q).message(), "边坡 – é"_q);
}
