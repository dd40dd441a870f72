#include "AdminFixture.h"
#include "store/OpenStore.h"

#include <filesystem>
#include <fstream>

namespace monitorservice {
namespace {

using test::CommandResult;
using test::ServiceProcess;
using ::testing::AllOf;
using ::testing::HasSubstr;

class CopyCommand : public test::AdminFixture
{
protected:
    CommandResult copyTo(const std::string& target) const
    {
        return test::run({"copy", "--from", file, "--to", target});
    }

    void expectRefusal(const CommandResult& result, const std::string& message) const
    {
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.error, HasSubstr(message));
    }

    const std::string other = folder.file("other.db").string();
};

TEST_F(CopyCommand, SaysWhatBothPlacesHold)
{
    const std::string project = newProject();
    newTokenId("Ada");
    const CommandResult copied = copyTo(other);
    EXPECT_EQ(copied.exitCode, 0) << copied.error;
    EXPECT_THAT(copied.out, ::testing::MatchesRegex("1 project, 2 entries of the audit trail, 1 token\n"
                                                    "both hold the same: SHA-256 [0-9a-f]+\n"));
    EXPECT_THAT(copied.error, AllOf(HasSubstr("copying " + file), HasSubstr(" to " + other)));
    for (const char* const kind : {"project", "token"}) {
        EXPECT_EQ(test::runAdmin(other, {kind, "list", "--json"}).out, admin({kind, "list", "--json"}).out);
    }
    expectRefusal(copyTo(other), "there are data already");
    expectRefusal(copyTo(file), "there are data already");
}

TEST_F(CopyCommand, TakesPlacesFromFiles)
{
    newProject();
    const std::string url = folder.file("url").string();
    std::ofstream(url) << other << '\n';
    std::filesystem::permissions(url, std::filesystem::perms::owner_read);
    EXPECT_EQ(test::run({"copy", "--from", file, "--to-url-file", url}).exitCode, 0);
    EXPECT_EQ(test::run({"copy", "--from-url-file", url, "--to", other + "2"}).exitCode, 0);
    EXPECT_TRUE(storeExists(other + "2"));
}

TEST_F(CopyCommand, OfNothingMakesNothing)
{
    expectRefusal(copyTo(other), file + ": it does not exist");
    EXPECT_FALSE(storeExists(other));
}

TEST_F(CopyCommand, NeedsBothPlacesOnceEach)
{
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"copy"},
          {"copy", "--from", file},
          {"copy", "--to", other},
          {"copy", "--from", file, "--from-url-file", "url", "--to", other}}) {
        const CommandResult result = test::run(arguments);
        EXPECT_EQ(result.exitCode, 2) << ::testing::PrintToString(arguments);
        EXPECT_THAT(result.error, HasSubstr("--")) << ::testing::PrintToString(arguments);
    }
    EXPECT_FALSE(storeExists(other));
}

TEST_F(CopyCommand, LeavesDataOfARunningServiceAlone)
{
    newProject();
    const ServiceProcess service({"serve", "--data", other, "--listen", "127.0.0.1:0"});
    EXPECT_THAT(service.readLine(), HasSubstr("listening"));
    expectRefusal(copyTo(other), "another monitor-service is using it");
}

TEST_F(CopyCommand, UnfinishedIsNoDataForAnybodyElse)
{
    newProject();
    {
        StoreOptions options;
        options.createIfMissing = true;
        const auto store = openStore(other, options);
        const auto session = store->write();
        session->setUnfinished(true);
        session->commit();
    }
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"serve", "--data", other, "--listen", "127.0.0.1:0"},
          {"admin", "--data", other, "project", "list"},
          {"copy", "--from", other, "--to", other + "2"}}) {
        expectRefusal(test::run(arguments), "a copy that is not complete");
    }
    EXPECT_FALSE(storeExists(other + "2"));
}

} // namespace
} // namespace monitorservice
