#include "domain/Stamp.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

TEST(Stamp, NewDocumentWasChangedWhenItWasMade)
{
    const Stamp stamp = Stamp::of({"Ada", "2026-01-01T00:00:00.000Z"});
    EXPECT_EQ(stamp.createdAt, "2026-01-01T00:00:00.000Z");
    EXPECT_EQ(stamp.createdBy, "Ada");
    EXPECT_EQ(stamp.updatedAt, "2026-01-01T00:00:00.000Z");
    EXPECT_EQ(stamp.updatedBy, "Ada");
}

TEST(Stamp, ChangeLeavesWhoMadeIt)
{
    Stamp stamp = Stamp::of({"Ada", "2026-01-01T00:00:00.000Z"});
    stamp.change({"Ben", "2026-01-02T00:00:00.000Z"});
    EXPECT_EQ(stamp.createdAt, "2026-01-01T00:00:00.000Z");
    EXPECT_EQ(stamp.createdBy, "Ada");
    EXPECT_EQ(stamp.updatedAt, "2026-01-02T00:00:00.000Z");
    EXPECT_EQ(stamp.updatedBy, "Ben");
}

TEST(Stamp, ClockThatWasSetBackMakesNoChangeOlder)
{
    Stamp stamp = Stamp::of({"Ada", "2026-01-02T00:00:00.000Z"});
    stamp.change({"Ben", "2026-01-01T00:00:00.000Z"});
    EXPECT_EQ(stamp.updatedAt, "2026-01-02T00:00:00.000Z");
    EXPECT_EQ(stamp.updatedBy, "Ben");
}

} // namespace
} // namespace monitorservice
