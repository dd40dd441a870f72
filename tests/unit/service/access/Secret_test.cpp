#include "access/Secret.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

TEST(Secret, HashIsSha256)
{
    // The example of FIPS 180-2, appendix B.1.
    const std::string hash = sha256("abc");
    ASSERT_EQ(hash.size(), 32U);
    EXPECT_EQ(static_cast<unsigned char>(hash.front()), 0xba);
    EXPECT_EQ(static_cast<unsigned char>(hash.back()), 0xad);
}

TEST(Secret, TokensDiffer)
{
    EXPECT_NE(newTokenText(), newTokenText());
    EXPECT_EQ(newTokenText().size(), 68U);
}

} // namespace
} // namespace monitorservice
