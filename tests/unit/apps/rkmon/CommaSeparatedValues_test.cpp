#include "CommaSeparatedValues.h"

#include <gtest/gtest.h>

TEST(CommaSeparatedValues, PlainFieldsStandBare)
{
    EXPECT_EQ(csv::record({QStringLiteral("a"), QString(), QString::fromUtf8("边坡")}),
              QString::fromUtf8("a,,边坡\r\n"));
}

TEST(CommaSeparatedValues, QuotesCommasQuotesAndLineBreaks)
{
    EXPECT_EQ(csv::record({QStringLiteral("a,b"), QStringLiteral("say \"hi\""), QStringLiteral("x\ny"),
                           QStringLiteral("x\ry")}),
              QStringLiteral("\"a,b\",\"say \"\"hi\"\"\",\"x\ny\",\"x\ry\"\r\n"));
}

TEST(CommaSeparatedValues, QuotesBlanksAtTheEnds)
{
    EXPECT_EQ(csv::record({QStringLiteral(" a"), QStringLiteral("b "), QStringLiteral("c d")}),
              QStringLiteral("\" a\",\"b \",c d\r\n"));
}

TEST(CommaSeparatedValues, OneEmptyFieldIsNoEmptyLine)
{
    EXPECT_EQ(csv::record({QString()}), QStringLiteral("\"\"\r\n"));
    EXPECT_EQ(csv::record({QString(), QString()}), QStringLiteral(",\r\n"));
}
