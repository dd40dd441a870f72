#include "store/postgres/StoredColumns.h"

#include <gtest/gtest.h>

#include <limits>

namespace monitorservice {
namespace {

TEST(StoredColumns, NumberIsWhatATextBeginsWith)
{
    EXPECT_EQ(numberAtBeginOf("2.5"), 2.5);
    EXPECT_EQ(numberAtBeginOf("-0.50 m"), -0.5);
    EXPECT_EQ(numberAtBeginOf("+3"), 3);
    EXPECT_EQ(numberAtBeginOf("1e2"), 100);
    EXPECT_EQ(numberAtBeginOf(".5"), 0.5);
    EXPECT_EQ(numberAtBeginOf("1e999"), std::numeric_limits<double>::infinity());
}

TEST(StoredColumns, TextThatBeginsWithNoneIsZero)
{
    for (const char* const text : {"", "-", "+", "top", "inf", "nan", "-inf", "x1"}) {
        EXPECT_EQ(numberAtBeginOf(text), 0) << text;
    }
}

TEST(StoredColumns, WhatIsMissingOrNoTextIsNull)
{
    const std::vector<StoredColumn> columns{{"a", "a"}, {"t", "t", StoredColumn::Kind::Time}};
    for (const char* const document :
         {"{}", R"({"a":1,"t":1})", R"({"a":null,"t":"yesterday"})", "[]", "no JSON"}) {
        PostgresValues values;
        addColumns(values, columns, document);
        ASSERT_EQ(values.count(), 2);
        EXPECT_EQ(values.pointers()[0], nullptr) << document;
        EXPECT_EQ(values.pointers()[1], nullptr) << document;
    }
    PostgresValues values;
    addColumns(values, columns, R"({"t":"1970-01-01T00:00:01.500Z","a":"x"})");
    EXPECT_STREQ(values.pointers()[0], "x");
    EXPECT_STREQ(values.pointers()[1], "1500");
}

} // namespace
} // namespace monitorservice
