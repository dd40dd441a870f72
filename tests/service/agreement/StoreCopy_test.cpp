#include "copy/StoreCopy.h"

#include "AskedServices.h"
#include "domain/Cell.h"
#include "store/OpenStore.h"
#include "store/StoreContents.h"
#include "store/sqlite/DataFiles.h"
#include "support/PostgresDatabase.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace monitorservice::test {
namespace {

using ::testing::HasSubstr;

class Interrupted : public std::runtime_error
{
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

void ignoreProgress(const std::string& /*line*/) {}

// Interrupts a copy when so many parts were written.
CopyProgress interruptAfter(std::size_t parts)
{
    return [parts, written = std::size_t{0}](const std::string& /*line*/) mutable {
        if (++written > parts) {
            throw Interrupted();
        }
    };
}

// Of the last identifiers the greatest one is copied, and not of which lane it was.
std::vector<std::string> copiedRowsOf(const std::string& file)
{
    std::vector<std::string> rows = rowsOf(file);
    const auto isLastIdentifier = [](const std::string& row) {
        return row.rfind("last_identifiers ", 0) == 0;
    };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isLastIdentifier), rows.end());
    return rows;
}

class CopiedStore : public AskedServices
{
protected:
    CopiedStore()
    {
        askRandomly(150);
        while (documentsOf(services.first(), DocumentKind::Alarm).empty() && !HasFailure() && asked < 2000) {
            askRandomly(10);
        }
    }

    std::unique_ptr<Store> openTarget(const std::string& location) const
    {
        StoreOptions options = services.options();
        options.mayBeUnfinished = true;
        return openStore(location, options);
    }

    CopiedContent copy(Store& from, const std::string& location) const
    {
        return copyStore(from, *openTarget(location), ignoreProgress);
    }

    // What copying fails with.
    std::string failureOf(Store& from, const std::string& location) const
    {
        try {
            copy(from, location);
        } catch (const CopyError& error) {
            return error.what();
        }
        return "copied";
    }

    std::string refusalToOpen(const std::string& location) const
    {
        try {
            openStore(location, services.options());
        } catch (const StoreError& error) {
            EXPECT_EQ(error.failure(), StoreFailure::CannotOpen);
            return error.what();
        }
        return "opened";
    }

    PostgresDatabase database;
    TemporaryFolder folder;
    std::string file = folder.file("copy.db").string();
};

TEST_P(CopiedStore, IsAnsweredFromLikeWhatItIsOf)
{
    const CopiedContent first = copy(services.first(), database.url());
    services.moveSecond(database.url());
    services.compareContents();
    askRandomly(100);
    const CopiedContent second = copy(services.second(), file);
    EXPECT_NE(first.checksum, second.checksum);
    services.moveSecond(file);
    services.compareContents();
    askRandomly(100);
    services.compareContents();
}

// Row by row, and not by what the stores say of themselves.
TEST_P(CopiedStore, ComesBackFromADatabaseRowByRow)
{
    const CopiedContent there = copy(services.first(), database.url());
    const std::unique_ptr<Store> inDatabase = openTarget(database.url());
    const CopiedContent back = copy(*inDatabase, file);
    EXPECT_EQ(back.checksum, there.checksum);
    EXPECT_EQ(toText(back.count), toText(there.count));
    EXPECT_GT(there.count.samples, 100U);
    EXPECT_GT(there.count.alarms, 0U);
    const std::string original = services.firstFile();
    EXPECT_EQ(copiedRowsOf(file), copiedRowsOf(original));
    EXPECT_THAT(damageOf(file), ::testing::IsEmpty());
}

TEST_P(CopiedStore, GoesOnWhereItWasInterrupted)
{
    copy(services.second(), database.url()); // how it ends when nothing interrupts it
    const std::vector<std::string> whole = contentsOf(*openTarget(database.url()));
    for (std::size_t parts = 0;; ++parts) {
        const TemporaryFolder other;
        const std::string location = other.file("copy.db").string();
        try {
            copyStore(services.second(), *openTarget(location), interruptAfter(parts));
            EXPECT_GT(parts, 3U);
            break;
        } catch (const Interrupted&) {
            EXPECT_THAT(refusalToOpen(location), HasSubstr("a copy that is not complete"));
        }
        copy(services.second(), location);
        EXPECT_EQ(refusalToOpen(location), "opened");
        EXPECT_EQ(contentsOf(*openTarget(location)), whole);
    }
}

TEST_P(CopiedStore, InADatabaseIsNotReadyBeforeItIsWhole)
{
    const std::unique_ptr<Store> target = openTarget(database.url());
    EXPECT_NO_THROW(target->checkReady());
    EXPECT_THROW(copyStore(services.first(), *target, interruptAfter(1)), Interrupted);
    EXPECT_THROW(target->checkReady(), StoreError);
    EXPECT_THAT(refusalToOpen(database.url()), HasSubstr("a copy that is not complete"));
    copyStore(services.first(), *target, ignoreProgress);
    EXPECT_NO_THROW(target->checkReady());
    EXPECT_EQ(refusalToOpen(database.url()), "opened");
}

TEST_P(CopiedStore, IsNotMadeWhereDataAre)
{
    copy(services.first(), file);
    const std::vector<std::string> before = rowsOf(file);
    EXPECT_THAT(failureOf(services.first(), file), HasSubstr("there are data already"));
    EXPECT_EQ(rowsOf(file), before);
    EXPECT_EQ(refusalToOpen(file), "opened");
}

// A monitoring that was copied already and is written to before the copy goes on.
TEST_P(CopiedStore, OfSomethingElseIsNamedAndStaysUnfinished)
{
    EXPECT_THROW(copyStore(services.first(), *openTarget(file), interruptAfter(1)), Interrupted);
    std::string name;
    services.write([&name](Session& session) {
        for (const Project& project : session.projects().list()) {
            const std::vector<std::string> cells = documentsOf(session, project.id, DocumentKind::Cell);
            if (!cells.empty()) {
                auto cell = fromDocument<Cell>(cells.front());
                name = cell.name = cell.name + " anew";
                session.documents(DocumentKind::Cell).replace(project.id, cell.id, toDocument(cell));
                return;
            }
        }
    });
    EXPECT_THAT(failureOf(services.first(), file), HasSubstr("differs in monitoring \"" + name + '"'));
    EXPECT_THAT(refusalToOpen(file), HasSubstr("a copy that is not complete"));
}

TEST_P(CopiedStore, GivesIdentifiersAfterThoseThatItHas)
{
    copy(services.first(), database.url());
    const std::unique_ptr<Store> copied = openTarget(database.url());
    const std::string last = services.first().read()->lastIdentifier();
    EXPECT_EQ(copied->read()->lastIdentifier(), last);
    services.wait(-100'000'000);
    EXPECT_GT(copied->write()->newIdentifier(), last);
}

INSTANTIATE_TEST_SUITE_P(Seeds, CopiedStore, ::testing::Range(1U, 3U));

} // namespace
} // namespace monitorservice::test
