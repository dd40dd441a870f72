#include "AdminFixture.h"

namespace monitorservice {
namespace {

using test::CommandResult;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class SubCategoryCommands : public test::AdminFixture
{
protected:
    SubCategoryCommands() { admin({"category", "add", "Settlement", "Inclinometer"}); }

    std::string listed(std::size_t index, std::string_view member) const
    {
        return memberAt(line({"subcategory", "list", "--json"}), index, member);
    }

    void expectUsageError(const Arguments& arguments, const std::string& message) const
    {
        const CommandResult result = admin(arguments);
        EXPECT_EQ(result.exitCode, 2) << ::testing::PrintToString(arguments);
        EXPECT_THAT(result.error, HasSubstr(message));
        EXPECT_THAT(result.out, IsEmpty());
    }

    const std::string project = newProject();
};

TEST_F(SubCategoryCommands, KindUnitAndDecimalsAreKeptAndListed)
{
    newSubCategory(project, "Water", {"--kind", "water level", "--unit", "m a.s.l.", "--decimals", "0"});
    EXPECT_EQ(listed(0, "kind"), R"("water level")");
    EXPECT_EQ(listed(0, "unit"), R"("m a.s.l.")");
    EXPECT_EQ(listed(0, "decimals"), "0");
    EXPECT_THAT(line({"subcategory", "list"}),
                AllOf(HasSubstr("KIND"), HasSubstr("water level  m a.s.l.  0")));
    newSubCategory(project, "Ground");
    EXPECT_EQ(listed(1, "kind"), R"("other")");
    EXPECT_EQ(listed(1, "unit"), R"("")");
    EXPECT_EQ(listed(1, "decimals"), "null");
}

TEST_F(SubCategoryCommands, ChangeTouchesWhatIsGivenAlone)
{
    const std::string id = newSubCategory(
        project, "Ground", {"--alias", "GL", "--kind", "settlement", "--unit", "mm", "--decimals", "15"});
    line({"subcategory", "change", id, "--name", "Ground level"});
    EXPECT_EQ(line({"subcategory", "list", "--json"}),
              R"([{"_id":")" + id + R"(","projectId":")" + project +
                  R"(","name":"Ground level","category":"Settlement","alias":"GL","kind":"settlement",)"
                  R"("unit":"mm","decimals":15}])");
    line({"subcategory", "change", id, "--alias", "", "--kind", "force", "--unit", "", "--decimals", "none"});
    EXPECT_EQ(line({"subcategory", "list", "--json"}),
              R"([{"_id":")" + id + R"(","projectId":")" + project +
                  R"(","name":"Ground level","category":"Settlement","alias":"","kind":"force",)"
                  R"("unit":"","decimals":null}])");
}

TEST_F(SubCategoryCommands, ValuesAreChecked)
{
    const std::string id = newSubCategory(project, "Ground");
    expectUsageError({"subcategory", "change", id, "--kind", "settelment"}, "did you mean \"settlement\"?");
    for (const char* const decimals : {"16", "-1", "1.5", "", "many", "99999999999"}) {
        expectUsageError({"subcategory", "change", id, "--decimals", decimals}, "from 0 to 15");
    }
    expectUsageError({"subcategory", "change", id}, "one of --name");
    expectUsageError({"subcategory", "change", "--name", "a"}, "id is required");
    expectFailure({"subcategory", "change", id, "--name", ""}, "--name is empty");
    expectFailure({"subcategory", "change", id, "--unit", "m\tm"}, "--unit has a control character");
    expectFailure({"subcategory", "change", "Grond", "--unit", "mm"},
                  "there is no sub-category \"Grond\"; did you mean " + id + " (\"Ground\")?");
    EXPECT_EQ(listed(0, "unit"), R"("")");
}

TEST_F(SubCategoryCommands, NameOfAnotherIsRefused)
{
    const std::string id = newSubCategory(project, "Ground");
    newSubCategory(project, "Wall");
    expectFailure({"subcategory", "change", id, "--name", "Wall"}, "has a sub-category \"Wall\" already");
    EXPECT_EQ(listed(0, "name"), R"("Ground")");
}

TEST_F(SubCategoryCommands, WhatIsEasilyMistakenIsWarnedOf)
{
    newSubCategory(project, "Süd", {"--alias", "S"});
    const CommandResult created = admin({"subcategory", "create", "--project", project, "--category",
                                         "Settlement", "--name", "SÜD", "--alias", "S"});
    EXPECT_EQ(created.exitCode, 0);
    EXPECT_THAT(created.error, AllOf(HasSubstr("warning: sub-category \"Süd\""), HasSubstr("alias \"S\" too"),
                                     HasSubstr("a sub-category \"Süd\" too")));
    const std::string id = created.line();
    const CommandResult renamed = admin({"subcategory", "change", id, "--name", "sÜd"});
    EXPECT_EQ(renamed.exitCode, 0);
    EXPECT_THAT(renamed.error, HasSubstr("a sub-category \"Süd\" too"));
    EXPECT_EQ(admin({"subcategory", "change", id, "--unit", "mm"}).error, "");
    EXPECT_EQ(admin({"subcategory", "change", id, "--name", "North", "--alias", "N"}).error, "");
    const CommandResult elsewhere =
        admin({"subcategory", "create", "--project", project, "--category", "Inclinometer", "--name", "süd"});
    EXPECT_THAT(elsewhere.error, Not(HasSubstr("warning")));
}

} // namespace
} // namespace monitorservice
