#include "store/sql/Narrowing.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace monitorservice {
namespace {

using Values = std::vector<SqlValue>;

const std::vector<NarrowableField> fields{
    {"name", "n", FieldKind::Text, true},
    {"remark", "r", FieldKind::Text, false},
    {"createdAt", "c", FieldKind::Time, true},
    {"lastDate", "l", FieldKind::Time, false},
    {"alarmTo", "EXISTS (SELECT 1 FROM json_each(d, '$.alarmTo') WHERE value IN ({}))", FieldKind::TextSet,
     false},
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
        const Narrowing narrowing = narrow(Where::parse(row.where), fields);
        EXPECT_EQ(narrowing.sql, row.sql);
        EXPECT_EQ(narrowing.values, row.values);
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
        {"{}", "1", {}, true},
        {R"({"unknown":"x"})", "1", {}, false},
        {R"({"unknown":{"$in":[]}})", "0", {}, true},
        {R"({"name":{"$regex":"x"}})", "1", {}, false},
        {R"({"name.x":"x"})", "1", {}, false},
    });
}

TEST(Narrowing, UniformTexts)
{
    check({
        {R"({"name":"x"})", "n IN (?)", texts({"x"}), true},
        {R"({"name":null})", "n IS NULL", {}, true},
        {R"({"name":5})", "0", {}, true},
        {R"({"name":["x"]})", "0", {}, true},
        {R"({"name":{"$in":["y","x",3,null]}})", "(n IN (?, ?) OR n IS NULL)", texts({"x", "y"}), true},
        {R"({"name":{"$ne":"x"}})", "(n NOT IN (?) OR n IS NULL)", texts({"x"}), true},
        {R"({"name":{"$ne":null}})", "n IS NOT NULL", {}, true},
        {R"({"name":{"$ne":5}})", "1", {}, true},
        {R"({"name":{"$nin":["x",null]}})", "n NOT IN (?)", texts({"x"}), true},
        {R"({"name":{"$gte":"a","$lt":"b"}})", "n >= ? AND n < ?", texts({"a", "b"}), true},
        {R"({"name":{"$gt":"a","$lte":"b"}})", "n > ? AND n <= ?", texts({"a", "b"}), true},
        {R"({"name":{"$gt":5}})", "0", {}, true},
        {R"({"name":{"$gte":null}})", "n IS NULL", {}, true},
        {R"({"name":{"$lt":null}})", "0", {}, true},
        {R"({"name":{"$exists":true}})", "1", {}, false},
        {R"({"name":{"$exists":false}})", "n IS NULL", {}, false},
        {R"({"name":"x","unknown":1})", "n IN (?)", texts({"x"}), false},
    });
}

TEST(Narrowing, TimestampsAreNotNarrowedAsTexts)
{
    check({
        {R"({"name":"2024-03-01T00:00:00Z"})", "1", {}, false},
        {R"({"name":{"$in":["x","2024-03-01T00:00:00Z"]}})", "1", {}, false},
        {R"({"name":{"$ne":"2024-03-01T00:00:00Z"}})", "1", {}, false},
        {R"({"name":{"$gte":"2024-03-01T00:00:00Z"}})", "1", {}, false},
        {R"({"name":"2024-03-01"})", "n IN (?)", texts({"2024-03-01"}), true},
    });
}

TEST(Narrowing, TextsThatMayBeUnusual)
{
    check({
        {R"({"remark":"x"})", "r IN (?, x'')", texts({"x"}), false},
        {R"({"remark":5})", "r IN (x'')", {}, false},
        {R"({"remark":null})", "(r IN (x'') OR r IS NULL)", {}, false},
        {R"({"remark":{"$ne":"x"}})", "(r NOT IN (?) OR r IS NULL)", texts({"x"}), false},
        {R"({"remark":{"$gt":"x"}})", "r > ?", texts({"x"}), false},
        {R"({"remark":{"$lt":"x"}})", "(r < ? OR r = x'')", texts({"x"}), false},
        {R"({"remark":{"$lt":5}})", "r = x''", {}, false},
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
        {R"({"createdAt":{"$ne":"2024-03-01T00:00:00Z"}})", "1", {}, false},
        {R"({"createdAt":{"$nin":["2024-03-01T00:00:00Z",null]}})", "c IS NOT NULL", {}, false},
        {R"({"createdAt":"yesterday"})", "0", {}, true},
        {R"({"createdAt":{"$ne":"yesterday"}})", "1", {}, true},
        {R"({"createdAt":{"$gte":"2024-03"}})", "1", {}, false},
        {R"({"createdAt":{"$gte":5}})", "0", {}, true},
        {R"({"lastDate":{"$gte":"2024-03-01T00:00:00Z"}})", "l >= ?", {march}, false},
        {R"({"lastDate":{"$lt":"2024-03-01T00:00:00Z"}})", "(l < ? OR l = x'')", {march}, false},
        {R"({"lastDate":"yesterday"})", "l IN (x'')", {}, false},
    });
}

TEST(Narrowing, Sets)
{
    check({
        {R"({"alarmTo":{"$in":["b","a"]}})",
         "(EXISTS (SELECT 1 FROM json_each(d, '$.alarmTo') WHERE value IN (?, ?)))", texts({"a", "b"}),
         false},
        {R"({"alarmTo":{"$in":["a",5]}})", "1", {}, false},
        {R"({"alarmTo":null})", "1", {}, false},
        {R"({"alarmTo":"2024-03-01T00:00:00Z"})", "1", {}, false},
        {R"({"alarmTo":{"$ne":"a"}})", "1", {}, false},
        {R"({"alarmTo":{"$gte":"a"}})", "1", {}, false},
        {R"({"alarmTo":{"$exists":false}})", "1", {}, false},
    });
}

TEST(Narrowing, ValuesKeepTheirBytes)
{
    const Narrowing narrowing = narrow(Where::parse(R"({"name":"a'\u0000\"?é"})"), fields);
    EXPECT_EQ(narrowing.sql, "n IN (?)");
    EXPECT_EQ(narrowing.values, (Values{std::string("a'\0\"?é", 7)}));
}

TEST(Narrowing, GeneratedColumnsNeedPlainNames)
{
    EXPECT_THROW(generatedTextColumn("document", ""), std::invalid_argument);
    EXPECT_THROW(generatedTextColumn("document", "a'b"), std::invalid_argument);
    EXPECT_THROW(generatedTextColumn("document", "a\"b"), std::invalid_argument);
}

} // namespace
} // namespace monitorservice
