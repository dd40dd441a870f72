#include "store/sql/Sql.h"

#include <gtest/gtest.h>

#include <limits>

namespace monitorservice {
namespace {

using Values = std::vector<SqlValue>;

constexpr Dialect questionMarks{};
const Dialect numbers = [] {
    Dialect dialect;
    dialect.numbersPlaceholders = true;
    return dialect;
}();

TEST(Sql, PlaceholdersAreCountedWhereTheyStandAtLast)
{
    const Sql project = Sql("project = ").appendValue(std::string("p"));
    const Sql category = Sql::isOneOf("category", {std::string("a"), std::string("b")});
    const Sql both = Sql("SELECT ").appendValue(1.5).append(" WHERE ").append(project).andAlso(category);
    EXPECT_EQ(both.text(questionMarks), "SELECT ? WHERE project = ? AND category IN (?, ?)");
    EXPECT_EQ(both.text(numbers), "SELECT $1 WHERE project = $2 AND category IN ($3, $4)");
    EXPECT_EQ(both.values(), (Values{1.5, std::string("p"), std::string("a"), std::string("b")}));
    EXPECT_EQ(category.text(numbers), "category IN ($1, $2)");
}

TEST(Sql, QuestionMarksInATextAreNoPlaceholders)
{
    const Sql sql = Sql("a ? 'b' AND c = ").appendValue(std::int64_t{7});
    EXPECT_EQ(sql.text(numbers), "a ? 'b' AND c = $1");
}

TEST(Sql, ConditionsAreJoinedFromNothing)
{
    Sql sql;
    EXPECT_TRUE(sql.isEmpty());
    EXPECT_EQ(sql.andAlso("a").andAlso(Sql("b = ").appendValue(std::int64_t{1})).text(numbers),
              "a AND b = $1");
    EXPECT_FALSE(sql.isEmpty());
    EXPECT_FALSE(Sql().appendValue(1.0).isEmpty());
}

TEST(Sql, NothingIsOneOfNoValues)
{
    EXPECT_EQ(Sql::isOneOf("a", {}).text(questionMarks), "FALSE");
}

TEST(Sql, PagesBeyondTheNumbersOfSqlAreTheLargest)
{
    const Sql page = Sql::page(3, std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(page.text(numbers), "LIMIT $1 OFFSET $2");
    EXPECT_EQ(page.values(), (Values{std::numeric_limits<std::int64_t>::max(), std::int64_t{3}}));
}

TEST(Sql, IsTheSameWithTheSameValuesAlone)
{
    const auto equals = [](double value) {
        return Sql("a = ").appendValue(value);
    };
    EXPECT_TRUE(equals(1) == equals(1));
    EXPECT_TRUE(equals(1) != equals(2));
    EXPECT_TRUE(equals(1) != Sql("a = ?"));
}

} // namespace
} // namespace monitorservice
