#include "AdminFixture.h"

namespace monitorservice {
namespace {

using test::CommandResult;

void expectRefused(const std::vector<std::string>& arguments, const std::string& message)
{
    const CommandResult result = test::run(arguments);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.error, "monitor-service: " + message + "\n");
}

TEST(UsageError, UnknownCommandsSuggest)
{
    expectRefused({"sreve"},
                  "unknown command \"sreve\"; did you mean \"serve\"? (see monitor-service --help)");
    expectRefused({"admin", "--data", "x", "projct", "list"},
                  "unknown command \"projct\"; did you mean \"project\"? (see monitor-service admin --help)");
    expectRefused(
        {"admin", "--data", "x", "subcategory", "crate"},
        "unknown command \"crate\"; did you mean \"create\"? (see monitor-service admin subcategory "
        "--help)");
    expectRefused({"zzz"}, "unknown command \"zzz\" (see monitor-service --help)");
}

TEST(UsageError, UnknownOptionsSuggestBeforeMissingOnesAreNamed)
{
    expectRefused({"serve", "--dta", "x"},
                  "unknown option \"--dta\"; did you mean \"--data\"? (see monitor-service serve --help)");
    expectRefused(
        {"admin", "--data", "x", "project", "create", "--nmae=Pit", "--time-zone", "UTC"},
        "unknown option \"--nmae\"; did you mean \"--name\"? (see monitor-service admin project create "
        "--help)");
    expectRefused({"admin", "--data", "x", "project", "create", "--name", "Pit"},
                  "--time-zone is required (see monitor-service admin project create --help)");
    expectRefused({"admin", "--data", "x", "project", "list", "more"},
                  "unexpected argument \"more\" (see monitor-service admin project list --help)");
}

TEST(UsageError, UnknownValuesSuggest)
{
    expectRefused({"admin", "--data", "x", "grant", "--token", "t", "--project", "p", "--role", "editr"},
                  "--role: \"editr\" is none of reader, editor, administrator; did you mean \"editor\"? (see "
                  "monitor-service "
                  "admin grant --help)");
    expectRefused(
        {"admin", "--data", "x", "grant", "--token", "t", "--project", "p", "--rights", "read,edti"},
        "--rights: \"edti\" is none of read, create, edit, delete; did you mean \"edit\"? (see "
        "monitor-service admin grant --help)");
    const CommandResult zone = test::run(
        {"admin", "--data", "x", "project", "create", "--name", "Pit", "--time-zone", "Europe/Viena"});
    EXPECT_EQ(zone.exitCode, 1);
    EXPECT_THAT(zone.error, ::testing::HasSubstr("did you mean \"Europe/Vienna\"?"));
}

TEST(UsageError, DataMayStandBeforeAndBehindACommand)
{
    const test::TemporaryFolder folder;
    const std::string file = folder.file("data.db").string();
    EXPECT_EQ(test::run({"admin", "category", "add", "Settlement", "--data", file}).exitCode, 0);
    EXPECT_EQ(test::run({"admin", "category", "--data", file, "list"}).out, "Settlement\n");
    EXPECT_EQ(test::run({"admin", "--data", file, "category", "list"}).out, "Settlement\n");
    expectRefused({"admin", "category", "list"},
                  "--data or --store is required (see monitor-service admin category list --help)");
}

} // namespace
} // namespace monitorservice
