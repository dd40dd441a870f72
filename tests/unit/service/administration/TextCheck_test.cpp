#include "administration/TextCheck.h"

#include "administration/AdministrationError.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

TEST(TextCheck, TellsWhatIsWrong)
{
    EXPECT_EQ(faultOf("Böschung \"Süd\""), "");
    EXPECT_EQ(faultOf(""), "is empty");
    EXPECT_EQ(faultOf("  "), "is empty");
    EXPECT_EQ(faultOf("a\tb"), "has a control character");
    EXPECT_EQ(faultOf("a\x7f"), "has a control character");
    EXPECT_EQ(faultOf("a\xff"), "is not UTF-8");
}

TEST(TextCheck, NamesTheMember)
{
    EXPECT_NO_THROW(requireText("name", "Pit"));
    EXPECT_NO_THROW(requireTextOrNone("alias", ""));
    EXPECT_THROW(requireTextOrNone("alias", " "), AdministrationError);
    try {
        requireText("name", "a\nb");
        FAIL() << "is accepted";
    } catch (const AdministrationError& error) {
        EXPECT_EQ(error.failure(), AdministrationFailure::BadValue);
        EXPECT_EQ(error.subject(), "name");
        EXPECT_EQ(error.value(), "a\nb");
        EXPECT_STREQ(error.what(), "has a control character");
    }
}

} // namespace
} // namespace monitorservice
