#include "DeliveryRun.h"
#include "DurabilityTest.h"
#include "store/sqlite/DataFiles.h"

#include <sys/resource.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <gmock/gmock.h>

#include <chrono>
#include <fstream>

namespace monitorservice::test {
namespace {

using ::testing::HasSubstr;

constexpr rlim_t smallFile = 600 * 1024;

// The tests may run as root, who may write everything.
void giveUpSuperuserRights()
{
#ifdef __linux__
    constexpr int mayOverridePermissions = 1; // CAP_DAC_OVERRIDE, capabilities(7)
    prctl(PR_CAPBSET_DROP, mayOverridePermissions, 0, 0, 0);
#endif
}

void limitFiles()
{
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = smallFile;
    setrlimit(RLIMIT_FSIZE, &limit);
}

class DataServiceProcess : public DurabilityTest
{
protected:
    // What the service says when it does not start.
    static std::string refusal(const std::filesystem::path& data, void (*beforeStart)() = nullptr)
    {
        ServiceProcess process({"serve", "--data", data.string(), "--listen", "127.0.0.1:0"}, beforeStart);
        EXPECT_EQ(process.readOutput(), "");
        const std::string message = process.readErrors();
        EXPECT_EQ(process.wait(), 1);
        EXPECT_THAT(message, HasSubstr("monitor-service: cannot open " + data.string()));
        return message;
    }
};

TEST_F(DataServiceProcess, ATerminationDuringDeliveriesLosesNothingAndLeavesNoLog)
{
    useSite(makeSite(file, clientCount));
    const int cycles = repetitions(30);
    std::chrono::milliseconds longest{0};
    for (int i = 0; i < cycles && !HasFailure(); ++i) {
        DataService service(file);
        {
            const DeliveryRun run(clients, service.port(), site->token);
            run.waitForAnswers(random(0, 8));
            std::this_thread::sleep_for(std::chrono::microseconds(random(0, 8'000)));
            const auto begin = std::chrono::steady_clock::now();
            service.process().signal(i % 2 == 0 ? SIGTERM : SIGINT);
            EXPECT_EQ(service.process().wait(), 0);
            longest = std::max(longest, std::chrono::duration_cast<std::chrono::milliseconds>(
                                            std::chrono::steady_clock::now() - begin));
        }
        EXPECT_EQ(service.process().readErrors(),
                  "monitor-service: alarms are only stored: nobody is told of them without --smtp-url or "
                  "--alarm-webhook\n");
        EXPECT_FALSE(std::filesystem::exists(file.string() + "-wal"));
        EXPECT_FALSE(std::filesystem::exists(file.string() + "-shm"));
        holdsWhatItMust(file);
    }
    EXPECT_EQ(tally().refused, 0U);
    print("terminated " + std::to_string(cycles) + " times, within " + std::to_string(longest.count()) +
              " ms",
          tally());
}

#ifdef __linux__
// The limit of a process on its files stands for a disk: it can be lifted while the process runs.
TEST_F(DataServiceProcess, LivesOnWhenNoFileMayGrowAndWritesAgainWhenItMay)
{
    useSite(makeSite(file, clientCount));
    DataService service(file, limitFiles);
    {
        const DeliveryRun run(clients, service.port(), site->token);
        for (ClientConnection watcher(service.port(), site->token); tally().refused < clientCount;) {
            EXPECT_EQ(watcher.call("GET", "projects/" + site->project + "/alarmManages").status, 200U);
        }
    }
    ClientConnection connection(service.port(), site->token);
    // A small write may still find room.
    RawAnswer refused;
    for (int i = 0; i < 1000 && refused.status != 503; ++i) {
        refused =
            connection.call("POST", "cells",
                            R"({"projectId":")" + site->project + R"(","name":"N","category":"Settlement"})");
    }
    EXPECT_EQ(refused.status, 503U);
    EXPECT_THAT(refused.body, HasSubstr("the store cannot be written at present"));
    EXPECT_EQ(connection.call("GET", "projects/" + site->project + "/normal_statistics").status, 200U);
    EXPECT_TRUE(holdsWhatItMust(file));
    const rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
    EXPECT_EQ(prlimit(service.process().id(), RLIMIT_FSIZE, &unlimited, nullptr), 0);
    for (const auto& client : clients) {
        EXPECT_EQ(
            client->sendOne([&](const std::string& method, const std::string& path, const std::string& body) {
                return connection.send(method, path, body);
            }),
            200U);
    }
    EXPECT_TRUE(holdsWhatItMust(file));
    service.process().signal(SIGTERM);
    EXPECT_THAT(service.process().readErrors(), HasSubstr("disk I/O error (SQLite result code 778)"));
    EXPECT_EQ(service.process().wait(), 0);
    EXPECT_TRUE(holdsWhatItMust(file));
    print("files that may not grow", tally());
}

TEST_F(DataServiceProcess, DoesNotStartOnWhatItMayNotWrite)
{
    makeSite(file, clientCount);
    namespace fs = std::filesystem;
    fs::permissions(file, fs::perms::owner_read);
    EXPECT_THAT(refusal(file, giveUpSuperuserRights), HasSubstr("it may only be read"));
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_THAT(refusal(file, giveUpSuperuserRights),
                HasSubstr("it lies in a folder that may only be read, but its log must be beside it"));
    EXPECT_THAT(refusal(folder.file("other.db"), giveUpSuperuserRights), HasSubstr("is that writable?"));
    fs::permissions(folder.path(), fs::perms::owner_all);
    // Nothing was spoilt.
    DataService service(file);
    service.process().signal(SIGTERM);
    EXPECT_EQ(service.process().wait(), 0);
}
#endif

TEST_F(DataServiceProcess, DoesNotStartOnWhatIsNotItsOwn)
{
    std::ofstream(file) << std::string(5000, 'x');
    EXPECT_THAT(refusal(file), HasSubstr("file is not a database"));
    const std::filesystem::path foreign = folder.file("foreign.db");
    makeForeignDatabase(foreign);
    EXPECT_THAT(refusal(foreign), HasSubstr("it is a database of another application"));
    const std::filesystem::path later = folder.file("later.db");
    makeSite(later, clientCount);
    setDataVersion(later, 1000);
    EXPECT_THAT(refusal(later), HasSubstr("it has data of version 1000, written by a later monitor-service"));
    const std::filesystem::path cut = folder.file("cut.db");
    makeSite(cut, clientCount);
    std::filesystem::resize_file(cut, 2000);
    EXPECT_THAT(refusal(cut), HasSubstr("malformed"));
}

TEST_F(DataServiceProcess, DoesNotStartOnTheFileOfAnotherService)
{
    makeSite(file, clientCount);
    const std::filesystem::path link = folder.file("link.db");
    std::filesystem::create_symlink(file, link);
    {
        DataService service(file);
        EXPECT_THAT(refusal(file), HasSubstr("another monitor-service is using it"));
        EXPECT_THAT(refusal(link), HasSubstr("another monitor-service is using it"));
        EXPECT_EQ(runAdmin(file.string(), {"category", "add", "Tilt"}).exitCode, 0);
        service.process().signal(SIGKILL);
        EXPECT_EQ(service.process().wait(), -SIGKILL);
    }
    DataService service(link);
    service.process().signal(SIGTERM);
    EXPECT_EQ(service.process().wait(), 0);
}

} // namespace
} // namespace monitorservice::test
