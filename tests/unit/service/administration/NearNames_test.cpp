#include "administration/NearNames.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

TEST(NearNames, DifferInCaseInAnyScript)
{
    EXPECT_TRUE(differInCaseOnly("Ground", "gROUND"));
    EXPECT_TRUE(differInCaseOnly("Böschung Süd", "BÖSCHUNG SÜD"));
    EXPECT_TRUE(differInCaseOnly("\\E.*[a] (b)", "\\e.*[A] (B)"));
    EXPECT_FALSE(differInCaseOnly("Ground", "Ground"));
    EXPECT_FALSE(differInCaseOnly("Ground", "Grounds"));
    EXPECT_FALSE(differInCaseOnly("a.c", "ABC"));
}

} // namespace
} // namespace monitorservice
