#include "domain/Depth.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace monitorservice {
namespace {

TEST(Depth, NumbersHaveOneSpelling)
{
    const std::vector<std::pair<const char*, const char*>> rows{
        {"2.5", "2.5"},
        {"2.50", "2.5"},
        {"+2.5", "2.5"},
        {"02.5", "2.5"},
        {"10", "10"},
        {"10.", "10"},
        {"10.0", "10"},
        {"100", "100"},
        {".5", "0.5"},
        {"0.5", "0.5"},
        {"0", "0"},
        {"-0.0", "0"},
        {"000", "0"},
        {"-1.50", "-1.5"},
        {"-.5", "-0.5"},
        {"2.050", "2.05"},
        {"2.5000000000000000000000000001", "2.5000000000000000000000000001"}};
    for (const auto& [depth, settled] : rows) {
        EXPECT_EQ(settledDepth(depth), settled);
    }
}

TEST(Depth, OtherTextsStay)
{
    for (const char* const depth : {"", "top", "2,50", "2.5m", " 2.5", "2.5 ", "1e1", "--1", "+-1", "+", "-",
                                    ".", "-.", "1.2.0", "0x10", "\xc2\xb2"}) {
        EXPECT_EQ(settledDepth(depth), depth);
    }
}

} // namespace
} // namespace monitorservice
