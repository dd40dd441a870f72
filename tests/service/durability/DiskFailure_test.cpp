#include "DurabilityTest.h"
#include "StoreRun.h"
#include "store/sqlite/FaultyDisk.h"

#include <gmock/gmock.h>

#include <functional>

namespace monitorservice::test {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;

class DiskFailure : public DurabilityTest
{
protected:
    // What is read of the whole project.
    std::string everything(const StoreRun& run) const
    {
        std::string text;
        for (const char* const list :
             {"pointLocations", "normal_statistics", "dataManages", "alarmManages"}) {
            const HttpResponse answer = run.call(*site, "GET", "projects/" + site->project + "/" + list);
            EXPECT_EQ(answer.status, 200U) << answer.body;
            text += answer.body;
        }
        return text;
    }

    // One delivery for each number of operations that the disk does well before `fail` takes effect; the disk
    // is repaired after each. What is refused must be refused with this message and leave nothing behind.
    void deliverOnFailing(const std::function<void(FaultyDisk&, std::size_t)>& fail,
                          const std::string& message)
    {
        useSite(makeSite(file, clientCount));
        {
            FaultyDisk disk;
            StoreRun run(file);
            const int failures = repetitions(150);
            for (int i = 0; i < failures && !HasFailure(); ++i) {
                deliverOnce(
                    run, disk, [&] { fail(disk, static_cast<std::size_t>(i % 90)); }, message);
            }
            EXPECT_GT(disk.failures(), static_cast<std::size_t>(failures) / 2);
            EXPECT_GT(disk.mainBytes(), 0U);
            holdsWhatItMust(file);
        }
        holdsWhatItMust(file);
        EXPECT_GT(tally().refused, 0U);
        print(message + ", " + std::to_string(tally().refused) + " requests refused", tally());
    }

    void deliverOnce(const StoreRun& run, FaultyDisk& disk, const std::function<void()>& fail,
                     const std::string& message)
    {
        DeliveringClient& client = *clients[static_cast<std::size_t>(random(0, clientCount - 1))];
        const std::string before = everything(run);
        HttpResponse answer;
        fail();
        const auto status =
            client.sendOne([&](const std::string& method, const std::string& path, const std::string& body) {
                answer = run.call(*site, method, path, body);
                return std::optional(ServiceAnswer{answer.status, answer.body});
            });
        if (status != 200U) {
            EXPECT_EQ(status, 503U);
            EXPECT_THAT(answer.body, HasSubstr(message));
            EXPECT_EQ(answer.headers, (decltype(answer.headers){{"Retry-After", "1"}}));
            EXPECT_EQ(everything(run), before) << "while the disk fails";
        }
        disk.repair();
        if (status != 200U) {
            EXPECT_EQ(everything(run), before);
            resolve(client, run.store());
        }
        EXPECT_EQ(client.sendOne(run.sender(*site)), 200U) << "though the disk works again";
    }
};

TEST_F(DiskFailure, AFullDiskRefusesWritesAndNothingElse)
{
    deliverOnFailing([](FaultyDisk& disk, std::size_t operations) { disk.fillAfter(operations); },
                     "the store has no room left");
}

TEST_F(DiskFailure, ADiskThatCannotBeWrittenRefusesWritesAndNothingElse)
{
    deliverOnFailing([](FaultyDisk& disk, std::size_t operations) { disk.breakAfter(operations); },
                     "the store cannot be written at present");
}

TEST_F(DiskFailure, NoFileIsMadeOnAFullDiskAndItIsSaidWhy)
{
    FaultyDisk disk;
    for (std::size_t operations = 0;; ++operations) {
        disk.fillAfter(operations);
        const std::size_t failures = disk.failures();
        const std::filesystem::path data = folder.file("new" + std::to_string(operations));
        try {
            const StoreRun run(data);
        } catch (const StoreError& error) {
            EXPECT_EQ(error.failure(), StoreFailure::CannotOpen);
            EXPECT_THAT(error.what(),
                        AnyOf(HasSubstr("database or disk is full"),
                              HasSubstr("disk I/O error (SQLite result code 4874)"))); // shared memory
            disk.repair();
            const StoreRun run(data);
            continue;
        }
        // Only what the end would have tidied up is left.
        if (disk.failures() == failures) {
            EXPECT_GT(operations, 10U);
            return;
        }
    }
}

} // namespace
} // namespace monitorservice::test
