#include "AdminFixture.h"

#include <filesystem>

namespace monitorservice {
namespace {

using test::CommandResult;
using test::ServiceProcess;
using ::testing::HasSubstr;

class BackupCommands : public test::AdminFixture
{
protected:
    std::vector<std::string> serving() const { return {"serve", "--data", file, "--listen", "127.0.0.1:0"}; }

    const std::string copy = folder.file("copy.db").string();
    const std::string restored = folder.file("restored.db").string();
};

TEST_F(BackupCommands, DataComeBackFromABackup)
{
    const std::string project = newProject();
    const CommandResult backup = admin({"backup", copy});
    EXPECT_EQ(backup.exitCode, 0);
    EXPECT_EQ(backup.out, "");
    EXPECT_EQ(backup.error, copy + " is whole and checked\n");
    const CommandResult restore = test::run({"admin", "restore", copy, "--data", restored});
    EXPECT_EQ(restore.exitCode, 0) << restore.error;
    EXPECT_EQ(restore.error, restored + " is whole and checked\n");
    EXPECT_EQ(memberAt(test::runAdmin(restored, {"project", "list", "--json"}).out, 0, "_id"),
              "\"" + project + "\"");
}

TEST_F(BackupCommands, ServiceGoesOnWhileItIsBackedUp)
{
    newProject();
    const ServiceProcess service(serving());
    EXPECT_THAT(service.readLine(), HasSubstr("listening"));
    EXPECT_EQ(admin({"backup", copy}).exitCode, 0);
    admin({"category", "add", "Settlement"});
    EXPECT_EQ(line({"category", "list"}), "Settlement");
    EXPECT_EQ(test::runAdmin(copy, {"category", "list"}).out, "");
}

TEST_F(BackupCommands, DataOfARunningServiceAreNotRestored)
{
    newProject();
    EXPECT_EQ(admin({"backup", copy}).exitCode, 0);
    const ServiceProcess service(serving());
    EXPECT_THAT(service.readLine(), HasSubstr("listening"));
    expectFailure({"restore", copy}, "another monitor-service is using it");
    // What the service has open is no longer under its name, but it is its data.
    for (const char* const end : {"", "-wal", "-shm"}) {
        std::filesystem::rename(file + end, restored + end);
    }
    expectFailure({"restore", copy}, "another monitor-service is using it");
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(BackupCommands, BothNeedAFile)
{
    for (const char* const command : {"backup", "restore"}) {
        EXPECT_EQ(admin({command}).exitCode, 2);
        EXPECT_EQ(test::run({"admin", command, copy}).exitCode, 2);
        expectFailure({command, copy}, "does not exist");
    }
}

} // namespace
} // namespace monitorservice
