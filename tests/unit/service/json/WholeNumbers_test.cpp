#include "json/WholeNumbers.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

TEST(WholeNumbers, OnlyThoseThatMayNotFitAreWrittenAnew)
{
    EXPECT_EQ(withReadableWholeNumbers(R"({"a":18446744073709552000,"b":[-18446744073709552000,7],"c":0.5})"),
              R"({"a":1.8446744073709552e+19,"b":[-1.8446744073709552e+19,7],"c":0.5})");
    EXPECT_EQ(withReadableWholeNumbers(R"([100000000000000000000])"), "[1e+20]");
    EXPECT_EQ(withReadableWholeNumbers(R"([123456789012345678,-1,0,1e+22,0.12345678901234567890123])"),
              R"([123456789012345678,-1,0,1e+22,0.12345678901234567890123])");
}

TEST(WholeNumbers, TextsStayAsTheyAre)
{
    const std::string document =
        R"({"18446744073709552000":"18446744073709552000 \" 18446744073709552000\\"})";
    EXPECT_EQ(withReadableWholeNumbers(document), document);
    EXPECT_EQ(withReadableWholeNumbers(""), "");
    EXPECT_EQ(withReadableWholeNumbers("\"never closed 18446744073709552000"),
              "\"never closed 18446744073709552000");
}

} // namespace
} // namespace monitorservice
