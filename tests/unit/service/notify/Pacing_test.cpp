#include "notify/Pacing.h"

#include <gtest/gtest.h>

#include <vector>

namespace monitorservice {
namespace {

TEST(Pacing, PausesDoubleUpToAnHour)
{
    std::vector<Instant> seconds;
    for (int failures = 1; failures <= 12; ++failures) {
        seconds.push_back(pauseAfter(failures) / 1000);
    }
    EXPECT_EQ(seconds, (std::vector<Instant>{10, 20, 40, 80, 160, 320, 640, 1280, 2560, 3600, 3600, 3600}));
    EXPECT_EQ(pauseAfter(1'000'000'000'000), 3600'000);
}

} // namespace
} // namespace monitorservice
