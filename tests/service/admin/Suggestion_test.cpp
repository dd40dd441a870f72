#include "admin/Suggestion.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

const std::vector<std::string> kinds{"displacement", "settlement", "inclinometer", "water level"};

TEST(Suggestion, FindsTheSlipOfTheKeyboard)
{
    EXPECT_EQ(closest("setlement", kinds), "settlement");
    EXPECT_EQ(closest("watre level", kinds), "water level");
    EXPECT_EQ(closest("incl", kinds), "inclinometer");
    EXPECT_EQ(closest("Böschnug", {"Baugrube", "Böschung"}), "Böschung");
    EXPECT_EQ(closest("ä", {"ö"}), "ö");
}

TEST(Suggestion, IsSilentWhenNothingIsClose)
{
    EXPECT_EQ(closest("tilt", kinds), "");
    EXPECT_EQ(closest("", {}), "");
    EXPECT_EQ(didYouMean("tilt", kinds), "");
    EXPECT_EQ(didYouMeanIdentifier("", {{"01", "Pit"}}), "");
}

TEST(Suggestion, EndsAMessage)
{
    EXPECT_EQ(didYouMean("setlement", kinds), "; did you mean \"settlement\"?");
    EXPECT_EQ(didYouMeanIdentifier("Pti", {{"01", "Slope"}, {"02", "Pit"}}), "; did you mean 02 (\"Pit\")?");
}

} // namespace
} // namespace monitorservice
