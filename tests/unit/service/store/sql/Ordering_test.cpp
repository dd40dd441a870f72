#include "store/sql/Ordering.h"

#include "query/QueryError.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

const std::vector<OrderableField> fields{
    {"createdAt", "created", SortedAs::Number},
    {"name", "name"},
    {"_id", "id"},
    {"data.time",
     Sql("(SELECT max(time) FROM samples WHERE time < ").appendValue(std::int64_t{9}).append(")"),
     SortedAs::Number},
    {"time", Sql("(SELECT max(time) FROM samples WHERE time < ").appendValue(std::int64_t{9}).append(")"),
     SortedAs::Number},
};

std::string ordered(const char* order, const Dialect& dialect = {})
{
    return orderBy(parseOrder(order), fields, "id", dialect).text(dialect);
}

std::string refusal(const char* text)
{
    try {
        ordered(text);
    } catch (const QueryError& error) {
        EXPECT_EQ(error.status(), 400);
        return error.what();
    }
    return "not refused";
}

TEST(Ordering, BreaksTiesByIdentifier)
{
    EXPECT_EQ(orderBy({}, fields, "id", {}).text({}), "ORDER BY id");
    EXPECT_EQ(ordered("name"), "ORDER BY name, id");
    EXPECT_EQ(ordered("-createdAt,name"), "ORDER BY created DESC, name, id");
    EXPECT_EQ(ordered("name,-_id"), "ORDER BY name, id DESC");
}

TEST(Ordering, TakesTheValuesOfWhatItOrdersByAlong)
{
    const Sql sql = orderBy(parseOrder("name,-data.time"), fields, "id", {});
    EXPECT_EQ(sql.text({}), "ORDER BY name, (SELECT max(time) FROM samples WHERE time < ?) DESC, id");
    EXPECT_EQ(sql.values(), std::vector<SqlValue>{std::int64_t{9}});
}

TEST(Ordering, IsWrittenAsTheDatabaseWritesIt)
{
    Dialect dialect;
    dialect.numbersPlaceholders = true;
    dialect.binaryCollation = R"( COLLATE "C")";
    dialect.placesNullLast = true;
    EXPECT_EQ(ordered("-createdAt,name", dialect),
              R"(ORDER BY created DESC NULLS LAST, name COLLATE "C", id COLLATE "C")");
    EXPECT_EQ(ordered("createdAt,-_id", dialect), R"(ORDER BY created NULLS FIRST, id COLLATE "C" DESC)");
}

TEST(Ordering, NamesWhatItRefuses)
{
    EXPECT_EQ(refusal("colour"), "order: cannot order by \"colour\"");
    EXPECT_EQ(refusal("name,-colour"), "order: cannot order by \"colour\"");
    EXPECT_EQ(refusal("--name"), "order: cannot order by \"-name\"");
    EXPECT_EQ(refusal("+name"), "order: cannot order by \"+name\"");
    EXPECT_EQ(refusal("name DESC"), "order: cannot order by \"name DESC\"");
    EXPECT_EQ(refusal("Name"), "order: cannot order by \"Name\"");
    EXPECT_EQ(refusal("time,data.time"), "order: \"data.time\" orders by the same field again");
    EXPECT_EQ(refusal("time,-data.time"), "order: \"-data.time\" orders by the same field again");
}

} // namespace
} // namespace monitorservice
