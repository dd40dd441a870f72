#include "DurabilityTest.h"
#include "StoreRun.h"
#include "store/sqlite/FaultyDisk.h"

namespace monitorservice::test {
namespace {

class PowerCut : public DurabilityTest
{
protected:
    // The data file in a new folder.
    std::filesystem::path nextFile()
    {
        const std::filesystem::path newFolder = folder.file("disk" + std::to_string(++m_folders));
        std::filesystem::create_directory(newFolder);
        return newFolder / "data.db";
    }

    // The power goes while clients deliver, or while the service ends. Gives what is found afterwards.
    std::filesystem::path cut(FaultyDisk& disk, const std::filesystem::path& data, bool isNew)
    {
        {
            StoreRun run(data);
            if (isNew) {
                useSite(makeSite(run.store(), clientCount));
            }
            if (random(0, 3) == 0) {
                disk.failSyncAfter(static_cast<std::size_t>(random(0, 30)));
            }
            if (random(0, 4) == 0) {
                deliverSome(run);
                disk.losePowerAfter(static_cast<std::size_t>(random(0, 60)));
            } else {
                const auto operations = static_cast<std::size_t>(random(0, 6000));
                random(0, 1) == 0 ? disk.losePowerAfter(operations) : disk.losePowerInSyncAfter(operations);
                run.deliverUntilRefused(clients, *site);
                EXPECT_FALSE(disk.hasPower());
            }
        }
        checkpoints += disk.mainBytes() > 0 ? 1 : 0;
        std::mt19937 chance(nextSeed());
        const std::filesystem::path survivor = nextFile();
        disk.writeSurvivors(survivor.parent_path(), chance);
        return survivor;
    }

    void deliverSome(const StoreRun& run)
    {
        for (int round = random(1, 5); round > 0; --round) {
            for (const auto& client : clients) {
                if (client->sendOne(run.sender(*site)) != 200U) {
                    return;
                }
            }
        }
    }

    int checkpoints = 0;

private:
    int m_folders = 0;
};

TEST_F(PowerCut, LosesNothingThatWasAnsweredAndLeavesNothingInPart)
{
    const int cycles = repetitions(100);
    DeliveryTally sum;
    std::filesystem::path data = nextFile();
    int done = 0;
    for (; done < cycles && !HasFailure(); ++done) {
        // Now and then a file that has just been made.
        const bool isNew = done % 10 == 0;
        if (isNew) {
            sum += tally();
            data = nextFile();
        }
        {
            FaultyDisk disk;
            disk.adopt(data.parent_path());
            data = cut(disk, data, isNew);
        }
        holdsWhatItMust(data);
    }
    sum += tally();
    EXPECT_GT(sum.answered, static_cast<std::size_t>(cycles));
    EXPECT_GT(sum.unansweredAbsent, 0U);
    EXPECT_GT(sum.unansweredWhole, 0U);
    print("power cut, " + std::to_string(done) + " times, the log being brought into the file in " +
              std::to_string(checkpoints),
          sum);
}

// Proves that the test above sees what it must not find.
TEST_F(PowerCut, ADiskThatDoesNotSyncIsFoundOut)
{
    const int cycles = repetitions(20);
    int damaged = 0;
    std::size_t lost = 0;
    for (int i = 0; i < cycles; ++i) {
        std::filesystem::path data = nextFile();
        useSite(makeSite(data, clientCount));
        {
            FaultyDisk disk;
            disk.ignoreSyncs();
            disk.adopt(data.parent_path());
            data = cut(disk, data, false);
        }
        try {
            const std::vector<std::string> problems = problemsOf(data);
            lost += tally().missing;
            damaged += problems.empty() ? 0 : 1;
        } catch (const std::exception&) {
            ++damaged;
        }
    }
    EXPECT_GT(lost, 0U);
    EXPECT_GT(damaged, 0);
    std::cout << "a disk that does not sync, " << cycles << " times: " << lost
              << " answered deliveries seen to be lost, " << damaged << " files seen to be wrong\n";
}

} // namespace
} // namespace monitorservice::test
