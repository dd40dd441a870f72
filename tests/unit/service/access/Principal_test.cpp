#include "access/Principal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Grant grant(const std::optional<std::string>& project, const std::optional<std::string>& category,
            Rights rights)
{
    return {"g", "t", project, category, rights, 0};
}

TEST(Principal, HoldsWhatItsGrantsAddUpTo)
{
    const Principal principal("Ada", {grant("p1", "A", Right::Read), grant("p1", std::nullopt, Right::Create),
                                      grant("p1", "A", Right::Edit), grant("p2", "B", Right::Delete)});
    EXPECT_EQ(principal.owner(), "Ada");
    EXPECT_TRUE(principal.may(Right::Read, "p1", "A"));
    EXPECT_TRUE(principal.may(Right::Edit, "p1", "A"));
    EXPECT_TRUE(principal.may(Right::Create, "p1", "A"));
    EXPECT_TRUE(principal.may(Right::Create, "p1", "B"));
    EXPECT_FALSE(principal.may(Right::Read, "p1", "B"));
    EXPECT_FALSE(principal.may(Right::Delete, "p1", "B"));
    EXPECT_TRUE(principal.may(Right::Delete, "p2", "B"));
    EXPECT_FALSE(principal.may(Right::Create, "p3", "A"));
}

TEST(Principal, KnowsWhereARightIsHeld)
{
    const Principal principal("Ada",
                              {grant("p1", "A", Right::Read), grant("p1", "B", Right::Read),
                               grant("p1", "C", Right::Edit), grant("p1", std::nullopt, Right::Create)});
    EXPECT_THAT(*principal.categoriesWith(Right::Read, "p1"), ElementsAre("A", "B"));
    EXPECT_EQ(principal.categoriesWith(Right::Create, "p1"), std::nullopt);
    EXPECT_THAT(*principal.categoriesWith(Right::Delete, "p1"), IsEmpty());
    EXPECT_THAT(*principal.categoriesWith(Right::Read, "p2"), IsEmpty());
    EXPECT_TRUE(principal.mayAnywhere(Right::Edit, "p1"));
    EXPECT_TRUE(principal.mayAnywhere(Right::Create, "p1"));
    EXPECT_FALSE(principal.mayAnywhere(Right::Delete, "p1"));
}

TEST(Principal, TellsAllThatItHolds)
{
    const Principal principal("Ada", {grant("p2", "B", Right::Delete), grant("p1", "A", Right::Read),
                                      grant("p1", std::nullopt, Right::Create), grant("p1", "A", Right::Edit),
                                      grant("p3", "A", Rights())});
    std::vector<std::string> told;
    for (const HeldRights& held : principal.allRights()) {
        told.push_back(held.project.value_or("*") + " " + held.category.value_or("*") + " " +
                       held.rights.names());
    }
    EXPECT_THAT(told, ElementsAre("p1 * create", "p1 A read,edit", "p2 B delete"));
    EXPECT_TRUE(principal.isKnownIn("p1"));
    EXPECT_TRUE(principal.isKnownIn("p2"));
    EXPECT_FALSE(principal.isKnownIn("p3"));
    EXPECT_FALSE(principal.isKnownIn("p4"));
}

TEST(Principal, AdministersByAGrantOfTheWholeServiceAlone)
{
    const Rights all = Rights(Right::Read) | Right::Create | Right::Edit | Right::Delete | Right::Administer;
    const Principal administrator("Ada", {grant(std::nullopt, std::nullopt, all)});
    EXPECT_TRUE(administrator.mayAdminister());
    EXPECT_FALSE(administrator.isKnownIn("p1"));
    EXPECT_FALSE(administrator.may(Right::Read, "p1", "A"));
    EXPECT_FALSE(administrator.may(Right::Administer, "p1", "A"));
    EXPECT_THAT(*administrator.categoriesWith(Right::Read, "p1"), IsEmpty());

    const Principal editor("Bea", {grant("p1", std::nullopt, all), grant("p2", "A", Right::Administer)});
    EXPECT_FALSE(editor.mayAdminister());
    EXPECT_FALSE(editor.may(Right::Administer, "p1", "A"));
    EXPECT_FALSE(editor.isKnownIn("p2"));
    EXPECT_EQ(editor.allRights().at(0).rights.names(), "read,create,edit,delete");

    const Principal both("Cleo", {grant("p1", "A", Right::Read), grant(std::nullopt, std::nullopt, all)});
    EXPECT_TRUE(both.mayAdminister());
    EXPECT_TRUE(both.may(Right::Read, "p1", "A"));
    ASSERT_EQ(both.allRights().size(), 2U);
    EXPECT_EQ(both.allRights().at(0).project, std::nullopt);
    EXPECT_EQ(both.allRights().at(0).rights.names(), "administer");
}

} // namespace
} // namespace monitorservice
