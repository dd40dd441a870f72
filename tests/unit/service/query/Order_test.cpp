#include "query/Order.h"

#include "query/QueryError.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

// The terms one behind the other, a descending one with a minus.
std::string read(const char* text)
{
    std::string terms;
    for (const OrderTerm& term : parseOrder(text)) {
        terms += (terms.empty() ? "" : " ") + std::string(term.descending ? "-" : "") + term.path;
    }
    return terms;
}

std::string refusal(const char* text)
{
    try {
        parseOrder(text);
    } catch (const QueryError& error) {
        EXPECT_EQ(error.status(), 400);
        return error.what();
    }
    return "not refused";
}

TEST(Order, IsPathsWithTheirDirection)
{
    EXPECT_EQ(read("name"), "name");
    EXPECT_EQ(read("-createdAt,name"), "-createdAt name");
    EXPECT_EQ(read("name,-_id"), "name -_id");
    EXPECT_EQ(read("-data.time"), "-data.time");
    EXPECT_EQ(read("--name,+name,Name,name DESC"), "--name +name Name name DESC");
}

TEST(Order, NamesWhatItRefuses)
{
    for (const char* text : {"", "-", "name,", ",name", "name,,_id", "-,name"}) {
        EXPECT_EQ(refusal(text), "order: a name is missing") << text;
    }
    EXPECT_EQ(refusal("name,-name"), "order: \"-name\" orders by the same field again");
    EXPECT_EQ(refusal("-a,b,a"), "order: \"a\" orders by the same field again");
}

} // namespace
} // namespace monitorservice
