#include "AdminFixture.h"
#include "support/IsIdentifier.h"

#include <filesystem>
#include <fstream>
#include <future>
#include <set>

namespace monitorservice {
namespace {

using test::CommandResult;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using AdminCommand = test::AdminFixture;

TEST_F(AdminCommand, ProjectIsMadeAndListed)
{
    const std::string id =
        line({"project", "create", "--name", "Hafentunnel \"Süd\"", "--time-zone", "Europe/Vienna"});
    EXPECT_TRUE(test::isIdentifier(id));
    const std::string json = line({"project", "list", "--json"});
    EXPECT_EQ(memberAt(json, 0, "_id"), "\"" + id + "\"");
    EXPECT_EQ(memberAt(json, 0, "name"), R"("Hafentunnel \"Süd\"")");
    EXPECT_EQ(memberAt(json, 0, "timeZone"), R"("Europe/Vienna")");
    EXPECT_THAT(line({"project", "list"}),
                AllOf(StartsWith("ID"), HasSubstr(id), HasSubstr("Europe/Vienna")));
}

TEST_F(AdminCommand, TimeZoneMustBeKnown)
{
    for (const char* const zone : {"Europe/Vien", "../../etc/passwd", "+01:00"}) {
        expectFailure({"project", "create", "--name", "Pit", "--time-zone", zone}, "time-zone");
    }
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(AdminCommand, NamesMustBeReadable)
{
    expectFailure({"project", "create", "--name", " ", "--time-zone", "UTC"}, "--name is empty");
    expectFailure({"project", "create", "--name", "a\nb", "--time-zone", "UTC"},
                  "--name has a control character");
    expectFailure({"project", "create", "--name", "a\xff", "--time-zone", "UTC"}, "--name is not UTF-8");
    expectFailure({"category", "add", "a", "\t"}, "control character");
}

TEST_F(AdminCommand, CategoriesAreAddedOnce)
{
    EXPECT_EQ(admin({"category", "add", "Settlement", "Inclinometer"}).exitCode, 0);
    const CommandResult again = admin({"category", "add", "Settlement", "Wasserstand"});
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_THAT(again.error, HasSubstr("\"Settlement\" is there already"));
    EXPECT_EQ(line({"category", "list"}), "Settlement\nInclinometer\nWasserstand");
    EXPECT_EQ(line({"category", "list", "--json"}), R"(["Settlement","Inclinometer","Wasserstand"])");
}

TEST_F(AdminCommand, CategoryMayBeCalledLikeACommand)
{
    EXPECT_EQ(admin({"category", "add", "project", "token"}).exitCode, 0);
    EXPECT_EQ(line({"category", "list"}), "project\ntoken");
}

TEST_F(AdminCommand, SubCategoryIsMadeOnceInItsCategory)
{
    const std::string project = newProject();
    admin({"category", "add", "Settlement", "Inclinometer"});
    const auto create = [&project](const std::string& category) {
        return Arguments{"subcategory", "create", "--project", project,
                         "--category",  category, "--name",    "Ground"};
    };
    const std::string id = line(create("Settlement"));
    EXPECT_TRUE(test::isIdentifier(id));
    expectFailure(create("Settlement"), "\"Ground\" already");
    expectFailure(create("Unheard"), "there is no category \"Unheard\"");
    EXPECT_LT(id, line(create("Inclinometer")));
    expectFailure({"subcategory", "create", "--project", "x", "--category", "Settlement", "--name", "a"},
                  "there is no project \"x\"");
    line({"subcategory", "create", "--project", project, "--category", "Settlement", "--name", "B", "--alias",
          "b1"});
    const std::string json = line({"subcategory", "list", "--project", project, "--json"});
    EXPECT_EQ(memberAt(json, 0, "_id"), "\"" + id + "\"");
    EXPECT_EQ(memberAt(json, 0, "alias"), "\"\"");
    EXPECT_EQ(memberAt(json, 2, "alias"), "\"b1\"");
    EXPECT_THAT(line({"subcategory", "list"}), HasSubstr("Inclinometer  Ground"));
}

TEST_F(AdminCommand, TokenIsShownOnceAndKeptNowhere)
{
    const CommandResult created = admin({"token", "create", "--owner", "Ada", "--name", "laptop"});
    EXPECT_EQ(created.exitCode, 0);
    const std::string token = created.line();
    EXPECT_EQ(token.substr(0, 4), "rkm_");
    EXPECT_EQ(token.size(), 68U);
    EXPECT_EQ(created.out, token + "\n");
    EXPECT_THAT(created.error, HasSubstr("of Ada"));
    EXPECT_THAT(admin({"token", "list"}).out, ::testing::Not(HasSubstr(token)));
    EXPECT_THAT(admin({"token", "list", "--json"}).out, ::testing::Not(HasSubstr(token)));
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::string content(std::istreambuf_iterator<char>(stream), {});
        EXPECT_EQ(content.find(token.substr(4)), std::string::npos) << entry.path();
    }
    EXPECT_NE(token, line({"token", "create", "--owner", "Ada"}));
}

TEST_F(AdminCommand, TokenStatesAreListed)
{
    const std::string id = newTokenId("Ada");
    line({"token", "create", "--owner", "Bob", "--expires", "2999-12-31T23:00:00+01:00"});
    EXPECT_EQ(admin({"token", "revoke", id}).exitCode, 0);
    EXPECT_EQ(admin({"token", "revoke", id}).exitCode, 0);
    expectFailure({"token", "revoke", "x"}, "there is no token \"x\"");
    expectFailure({"token", "revoke", "Ade"},
                  "there is no token \"Ade\"; did you mean " + id + " (\"Ada\")?");
    const std::string json = line({"token", "list", "--json"});
    EXPECT_EQ(memberAt(json, 0, "state"), R"("revoked")");
    EXPECT_NE(memberAt(json, 0, "revokedAt"), "null");
    EXPECT_EQ(memberAt(json, 1, "state"), R"("valid")");
    EXPECT_EQ(memberAt(json, 1, "expiresAt"), R"("2999-12-31T22:00:00.000Z")");
    EXPECT_EQ(memberAt(json, 1, "revokedAt"), "null");
}

TEST_F(AdminCommand, ExpiryMustBeATimeToCome)
{
    for (const char* const time : {"2999-12-31", "tomorrow", "2999-12-31T23:00:00", "2999-02-30T00:00:00Z"}) {
        expectFailure({"token", "create", "--owner", "Ada", "--expires", time}, "not a time with its zone");
    }
    expectFailure({"token", "create", "--owner", "Ada", "--expires", "2001-01-01T00:00:00Z"}, "is past");
}

TEST_F(AdminCommand, GrantsAddUpAndAreRevoked)
{
    const std::string project = newProject();
    const std::string token = newTokenId("Ada");
    admin({"category", "add", "Settlement"});
    const auto granted = [&](const Arguments& more) {
        Arguments arguments{"grant", "--token", token, "--project", project};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return line(arguments);
    };
    const std::string grant = granted({"--category", "Settlement", "--rights", "read"});
    EXPECT_EQ(granted({"--category", "Settlement", "--rights", "edit,create"}), grant);
    const std::string everywhere = granted({"--role", "reader"});
    EXPECT_NE(everywhere, grant);
    std::string json = line({"grant", "list", "--json"});
    EXPECT_EQ(memberAt(json, 0, "rights"), R"("read,create,edit")");
    EXPECT_EQ(memberAt(json, 0, "category"), R"("Settlement")");
    EXPECT_EQ(memberAt(json, 1, "rights"), R"("read")");
    EXPECT_EQ(memberAt(json, 1, "category"), "null");
    EXPECT_EQ(admin({"grant", "revoke", grant}).exitCode, 0);
    expectFailure({"grant", "revoke", grant}, "there is no grant");
    EXPECT_EQ(granted({"--role", "editor"}), everywhere);
    json = line({"grant", "list", "--json"});
    EXPECT_EQ(memberAt(json, 0, "_id"), "\"" + everywhere + "\"");
    EXPECT_EQ(memberAt(json, 0, "rights"), R"("read,create,edit,delete")");
}

TEST_F(AdminCommand, AdministratorIsOneOfTheWholeService)
{
    const std::string project = newProject();
    const std::string token = newTokenId("Ada");
    const Arguments administrator{"grant", "--token", token, "--role", "administrator"};
    const std::string grant = line(administrator);
    EXPECT_EQ(line(administrator), grant);
    const std::string reader = line({"grant", "--token", token, "--project", project, "--role", "reader"});
    EXPECT_NE(reader, grant);
    const std::string json = line({"grant", "list", "--json"});
    EXPECT_EQ(memberAt(json, 0, "_id"), "\"" + grant + "\"");
    EXPECT_EQ(memberAt(json, 0, "projectId"), "null");
    EXPECT_EQ(memberAt(json, 0, "category"), "null");
    EXPECT_EQ(memberAt(json, 0, "rights"), R"("administer")");
    EXPECT_EQ(memberAt(json, 1, "rights"), R"("read")");
    EXPECT_THAT(line({"grant", "list"}), HasSubstr(token + "  (the whole service)       administer\n"));
    line({"grant", "revoke", grant});
    EXPECT_THAT(line({"grant", "list"}), ::testing::Not(HasSubstr("administer")));
}

TEST_F(AdminCommand, AdministratorIsOfNoProject)
{
    const std::string project = newProject();
    const std::string token = newTokenId("Ada");
    for (const Arguments& option : {Arguments{"--project", project}, Arguments{"--category", "Settlement"}}) {
        Arguments arguments{"grant", "--token", token, "--role", "administrator"};
        arguments.insert(arguments.end(), option.begin(), option.end());
        const CommandResult result = admin(arguments);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_THAT(result.error,
                    HasSubstr(option.front() + ": an administrator is one of the whole service"));
    }
    const CommandResult named =
        admin({"grant", "--token", token, "--project", project, "--rights", "read,administer"});
    EXPECT_EQ(named.exitCode, 2);
    EXPECT_THAT(named.error, HasSubstr("\"administer\" is none of read, create, edit, delete"));
    EXPECT_EQ(line({"grant", "list", "--json"}), "[]");
}

TEST_F(AdminCommand, GrantsAreForWhatExists)
{
    const std::string project = newProject();
    const std::string token = newTokenId("Ada");
    expectFailure({"grant", "--token", "x", "--project", project, "--role", "reader"},
                  "there is no token \"x\"");
    expectFailure({"grant", "--token", token, "--project", "x", "--role", "reader"},
                  "there is no project \"x\"");
    expectFailure({"grant", "--token", token, "--project", project, "--category", "x", "--role", "reader"},
                  "there is no category \"x\"");
    admin({"token", "revoke", token});
    expectFailure({"grant", "--token", token, "--project", project, "--role", "reader"}, "has been revoked");
    EXPECT_EQ(line({"grant", "list", "--json"}), "[]");
}

TEST_F(AdminCommand, WrongUsageIsTwo)
{
    const std::string project = newProject();
    for (const Arguments& arguments : std::vector<Arguments>{
             {},
             {"nothing"},
             {"project"},
             {"project", "create", "--name", "Pit"},
             {"project", "list", "more"},
             {"category", "add"},
             {"token", "create"},
             {"token", "revoke"},
             {"grant"},
             {"grant", "--token", "t", "--project", project},
             {"grant", "--token", "t", "--role", "reader"},
             {"grant", "--role", "administrator"},
             {"grant", "--token", "t", "--role", "administrator", "--rights", "read"},
             {"grant", "--token", "t", "--project", project, "--role", "owner"},
             {"grant", "--token", "t", "--project", project, "--rights", "write"},
             {"grant", "--token", "t", "--project", project, "--rights", "read", "--role", "reader"},
         }) {
        const CommandResult result = admin(arguments);
        EXPECT_EQ(result.exitCode, 2) << ::testing::PrintToString(arguments) << result.error;
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_NE(result.error, "");
    }
    EXPECT_EQ(test::run({}).exitCode, 2);
    EXPECT_EQ(test::run({"serve"}).exitCode, 2);
}

TEST_F(AdminCommand, HelpShowsExamples)
{
    const CommandResult help = test::run({"admin", "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out, AllOf(HasSubstr("Examples:"), HasSubstr("token create"), HasSubstr("--data")));
    EXPECT_THAT(test::run({"serve", "--help"}).out, HasSubstr("Examples:"));
}

TEST_F(AdminCommand, MissingFileIsNotMadeByReading)
{
    for (const Arguments& arguments : std::vector<Arguments>{{"project", "list"},
                                                             {"token", "list"},
                                                             {"grant", "list"},
                                                             {"category", "list"},
                                                             {"subcategory", "list"},
                                                             {"token", "revoke", "x"}}) {
        expectFailure(arguments, "does not exist");
    }
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(AdminCommand, ProcessesAtOnceNeverGiveTheSameIdentifier)
{
    line({"category", "add", "Settlement"});
    std::vector<std::future<std::string>> commands;
    commands.reserve(12);
    for (int i = 0; i < 12; ++i) {
        commands.push_back(std::async(std::launch::async, [this] { return newProject(); }));
    }
    std::set<std::string> ids;
    for (auto& command : commands) {
        ids.insert(command.get());
    }
    EXPECT_EQ(ids.size(), 12U);
}

} // namespace
} // namespace monitorservice
