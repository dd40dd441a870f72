#include "store/sql/Narrowing.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

using Values = std::vector<SqlValue>;

const std::vector<NarrowableField> fields{
    {"name", "n"},
    {"createdAt", "c", FieldKind::Time},
};

constexpr std::int64_t march = 1709251200000; // 2024-03-01T00:00:00Z

struct Row
{
    const char* where;
    const char* sql;
    Values values;
    bool exact;
};

void check(const std::vector<Row>& rows)
{
    for (const Row& row : rows) {
        SCOPED_TRACE(row.where);
        const Narrowing narrowing = narrow(Where::parse(row.where), fields, Dialect());
        EXPECT_EQ(narrowing.condition.text(Dialect()), row.sql);
        EXPECT_EQ(narrowing.condition.values(), row.values);
        EXPECT_EQ(narrowing.exact, row.exact);
    }
}

Values texts(std::initializer_list<const char*> list)
{
    Values values;
    for (const char* text : list) {
        values.emplace_back(std::string(text));
    }
    return values;
}

TEST(Narrowing, NothingToNarrowBy)
{
    check({
        {"{}", "TRUE", {}, true},
        {R"({"unknown":"x"})", "TRUE", {}, false},
        {R"({"unknown":{"$in":[]}})", "FALSE", {}, true},
        {R"({"name":{"$regex":"x"}})", "TRUE", {}, false},
        {R"({"name.x":"x"})", "TRUE", {}, false},
    });
}

TEST(Narrowing, UniformTexts)
{
    check({
        {R"({"name":"x"})", "n IN (?)", texts({"x"}), true},
        {R"({"name":null})", "n IS NULL", {}, true},
        {R"({"name":5})", "FALSE", {}, true},
        {R"({"name":["x"]})", "FALSE", {}, true},
        {R"({"name":{"$in":["y","x",3,null]}})", "(n IN (?, ?) OR n IS NULL)", texts({"x", "y"}), true},
        {R"({"name":{"$ne":"x"}})", "(n NOT IN (?) OR n IS NULL)", texts({"x"}), true},
        {R"({"name":{"$ne":null}})", "n IS NOT NULL", {}, true},
        {R"({"name":{"$ne":5}})", "TRUE", {}, true},
        {R"({"name":{"$nin":["x",null]}})", "n NOT IN (?)", texts({"x"}), true},
        {R"({"name":{"$gte":"a","$lt":"b"}})", "n >= ? AND n < ?", texts({"a", "b"}), true},
        {R"({"name":{"$gt":"a","$lte":"b"}})", "n > ? AND n <= ?", texts({"a", "b"}), true},
        {R"({"name":{"$gt":5}})", "FALSE", {}, true},
        {R"({"name":{"$gte":null}})", "n IS NULL", {}, true},
        {R"({"name":{"$lt":null}})", "FALSE", {}, true},
        {R"({"name":{"$exists":true}})", "TRUE", {}, false},
        {R"({"name":{"$exists":false}})", "n IS NULL", {}, false},
        {R"({"name":"x","unknown":1})", "n IN (?)", texts({"x"}), false},
    });
}

TEST(Narrowing, TimestampsAreNotNarrowedAsTexts)
{
    check({
        {R"({"name":"2024-03-01T00:00:00Z"})", "TRUE", {}, false},
        {R"({"name":{"$in":["x","2024-03-01T00:00:00Z"]}})", "TRUE", {}, false},
        {R"({"name":{"$ne":"2024-03-01T00:00:00Z"}})", "TRUE", {}, false},
        {R"({"name":{"$gte":"2024-03-01T00:00:00Z"}})", "TRUE", {}, false},
        {R"({"name":"2024-03-01"})", "n IN (?)", texts({"2024-03-01"}), true},
    });
}

TEST(Narrowing, Times)
{
    check({
        {R"({"createdAt":{"$gte":"2024-03-01T00:00:00.000Z","$lt":"2024-03-01T08:00:00.001+08:00"}})",
         "c >= ? AND c < ?",
         {march, march + 1},
         true},
        {R"({"createdAt":{"$gt":"2024-03-01T00:00:00Z"}})", "c >= ?", {march}, false},
        {R"({"createdAt":{"$lte":"2024-03-01T00:00:00Z"}})", "c <= ?", {march}, false},
        {R"({"createdAt":{"$gte":"2024-03-01T00:00:00.0001Z"}})", "c >= ?", {march}, false},
        {R"({"createdAt":{"$lt":"2024-03-01T00:00:00.0001Z"}})", "c <= ?", {march}, false},
        {R"({"createdAt":"2024-03-01T00:00:00Z"})", "c IN (?)", {march}, false},
        {R"({"createdAt":{"$ne":"2024-03-01T00:00:00Z"}})", "TRUE", {}, false},
        {R"({"createdAt":{"$nin":["2024-03-01T00:00:00Z",null]}})", "c IS NOT NULL", {}, false},
        {R"({"createdAt":"yesterday"})", "FALSE", {}, true},
        {R"({"createdAt":{"$ne":"yesterday"}})", "TRUE", {}, true},
        {R"({"createdAt":{"$gte":"2024-03"}})", "TRUE", {}, false},
        {R"({"createdAt":{"$gte":5}})", "FALSE", {}, true},
    });
}

TEST(Narrowing, ValuesKeepTheirBytes)
{
    const Narrowing narrowing = narrow(Where::parse(R"({"name":"a'\u0000\"?é"})"), fields, Dialect());
    EXPECT_EQ(narrowing.condition.text(Dialect()), "n IN (?)");
    EXPECT_EQ(narrowing.condition.values(), (Values{std::string("a'\0\"?é", 7)}));
}

TEST(Narrowing, IsWrittenAsTheDatabaseWritesIt)
{
    Dialect dialect;
    dialect.numbersPlaceholders = true;
    dialect.binaryCollation = R"( COLLATE "C")";
    const auto text = [&dialect](const char* where) {
        return narrow(Where::parse(where), fields, dialect).condition.text(dialect);
    };
    EXPECT_EQ(text(R"({"name":{"$gt":"a","$lte":"b"},"createdAt":{"$lt":"2024-03-01T00:00:00Z"}})"),
              R"(n COLLATE "C" > $1 AND n COLLATE "C" <= $2 AND c < $3)");
    EXPECT_EQ(text(R"({"name":{"$in":["y","x",null]}})"), "(n IN ($1, $2) OR n IS NULL)");
    EXPECT_EQ(text(R"({"name":5})"), "FALSE");
    EXPECT_EQ(text("{}"), "TRUE");
}

} // namespace
} // namespace monitorservice
