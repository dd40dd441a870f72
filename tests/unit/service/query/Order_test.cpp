#include "query/Order.h"

#include "query/QueryError.h"

#include <gmock/gmock.h>

namespace monitorservice {
namespace {

using ::testing::HasSubstr;

const std::vector<SortableField> fields{{"createdAt", "created_ms"},
                                        {"name", "name"},
                                        {"_id", "id"},
                                        {"data.time", "last_ms"},
                                        {"time", "last_ms"}};

std::string orderSql(const char* text)
{
    return orderBy(parseOrder(text, fields), "id");
}

std::string refusal(const char* text)
{
    try {
        parseOrder(text, fields);
    } catch (const QueryError& error) {
        EXPECT_EQ(error.status(), 400);
        return error.what();
    }
    return "not refused";
}

TEST(Order, BreaksTiesByIdentifier)
{
    EXPECT_EQ(orderBy({}, "id"), "ORDER BY id");
    EXPECT_EQ(orderSql("name"), "ORDER BY name, id");
    EXPECT_EQ(orderSql("-createdAt,name"), "ORDER BY created_ms DESC, name, id");
    EXPECT_EQ(orderSql("name,-_id"), "ORDER BY name, id DESC");
    EXPECT_EQ(orderSql("-data.time"), "ORDER BY last_ms DESC, id");
}

TEST(Order, NamesWhatItRefuses)
{
    EXPECT_EQ(refusal("colour"), "order: cannot order by \"colour\"");
    EXPECT_EQ(refusal("name,-colour"), "order: cannot order by \"colour\"");
    EXPECT_EQ(refusal("--name"), "order: cannot order by \"-name\"");
    EXPECT_EQ(refusal("+name"), "order: cannot order by \"+name\"");
    EXPECT_EQ(refusal("name DESC"), "order: cannot order by \"name DESC\"");
    EXPECT_EQ(refusal("Name"), "order: cannot order by \"Name\"");
    for (const char* text : {"", "-", "name,", ",name", "name,,_id", "-,name"}) {
        EXPECT_EQ(refusal(text), "order: a name is missing") << text;
    }
    EXPECT_THAT(refusal("name,-name"), HasSubstr("\"-name\" orders by the same field again"));
    EXPECT_THAT(refusal("time,data.time"), HasSubstr("\"data.time\" orders by the same field again"));
}

} // namespace
} // namespace monitorservice
