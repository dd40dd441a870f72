#include "access/Rights.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

TEST(Rights, AreReadFromNamesAndWrittenInOneOrder)
{
    const auto rights = Rights::ofNames("delete,read");
    ASSERT_TRUE(rights);
    EXPECT_TRUE(rights->has(Right::Read));
    EXPECT_TRUE(rights->has(Right::Delete));
    EXPECT_FALSE(rights->has(Right::Create));
    EXPECT_FALSE(rights->has(Right::Edit));
    EXPECT_EQ(rights->names(), "read,delete");
}

TEST(Rights, EveryNameIsKnown)
{
    EXPECT_EQ(Rights::ofNames("administer,read,create,edit,delete")->names(),
              "read,create,edit,delete,administer");
}

TEST(Rights, UnknownAndEmptyNamesAreRefused)
{
    for (const char* const names : {"", ",", "read,", ",read", "read,,edit", "Read", "read, edit", "write"}) {
        EXPECT_FALSE(Rights::ofNames(names)) << names;
    }
}

TEST(Rights, LoseOneAlone)
{
    const Rights rights = Rights(Right::Read) | Right::Administer;
    EXPECT_TRUE(rights.without(Right::Administer) == Right::Read);
    EXPECT_TRUE(rights.without(Right::Edit) == rights);
}

TEST(Rights, SurviveTheirBits)
{
    const Rights rights = Rights(Right::Create) | Right::Edit | Right::Administer;
    EXPECT_TRUE(Rights::ofBits(rights.bits()) == rights);
    EXPECT_TRUE(Rights::ofBits(0xfe0).empty());
}

} // namespace
} // namespace monitorservice
