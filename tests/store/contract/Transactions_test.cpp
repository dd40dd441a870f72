#include "StoreContract.h"
#include "support/IsIdentifier.h"

#include <algorithm>
#include <future>
#include <set>
#include <thread>

namespace monitorservice::test {
namespace {

class Transactions : public StoreContract
{
};

TEST_P(Transactions, WhatIsNotCommittedIsUndone)
{
    {
        const auto session = store->write();
        session->categories().add("Settlement");
        EXPECT_TRUE(session->categories().contains("Settlement"));
    }
    EXPECT_FALSE(store->read()->categories().contains("Settlement"));
}

TEST_P(Transactions, ReaderSeesOneMomentAndNeverWhatIsNotCommitted)
{
    const auto before = store->read();
    EXPECT_FALSE(before->categories().contains("Settlement"));
    const auto writing = store->write();
    writing->categories().add("Settlement");
    EXPECT_FALSE(store->read()->categories().contains("Settlement"));
    writing->commit();
    EXPECT_TRUE(store->read()->categories().contains("Settlement"));
    EXPECT_FALSE(before->categories().contains("Settlement"));
}

TEST_P(Transactions, AnotherProcessSeesWhatWasCommitted)
{
    const auto administrator = open({});
    EXPECT_FALSE(store->read()->categories().contains("Settlement"));
    const auto session = administrator->write();
    session->categories().add("Settlement");
    session->commit();
    EXPECT_TRUE(store->read()->categories().contains("Settlement"));
}

TEST_P(Transactions, WhatWasCommittedIsThereAfterReopening)
{
    write([](Session& session) { session.projects().insert({"p", "Pit", "UTC", 1}); });
    store.reset();
    EXPECT_EQ(open({})->read()->projects().find("p").value().name, "Pit");
}

TEST_P(Transactions, WriterSeesWhatTheOneBeforeItCommitted)
{
    const auto other = open({});
    for (int i = 0; i < 10; ++i) {
        Store& writing = i % 2 == 0 ? *store : *other;
        const auto session = writing.write();
        EXPECT_EQ(session->categories().list().size(), static_cast<std::size_t>(i));
        session->categories().add("c" + std::to_string(i));
        session->commit();
    }
}

// Each adds one to a number that it read: none is lost.
TEST_P(Transactions, WritersThatReadWhatTheyWriteComeOneAfterTheOther)
{
    constexpr int writers = 4;
    constexpr int rounds = 15;
    write([](Session& session) {
        session.projects().insert({"p", "Pit", "UTC", 1});
        session.categories().add("c");
        session.documents(DocumentKind::SubCategory)
            .insert("p", "s", R"({"_id":"s","projectId":"p","name":"0","category":"c","alias":""})");
    });
    const auto other = open();
    const auto count = [](Store& writing) {
        for (int i = 0; i < rounds; ++i) {
            const auto session = writing.write();
            const std::string text = session->documents(DocumentKind::SubCategory).find("s").value().text;
            const int number = std::stoi(text.substr(text.find("name\":\"") + 7));
            session->documents(DocumentKind::SubCategory)
                .replace("p", "s",
                         R"({"_id":"s","projectId":"p","name":")" + std::to_string(number + 1) +
                             R"(","category":"c","alias":""})");
            session->commit();
        }
    };
    std::vector<std::future<void>> all;
    all.reserve(writers);
    for (int writer = 0; writer < writers; ++writer) {
        all.push_back(std::async(std::launch::async, count, std::ref(writer % 2 == 0 ? *store : *other)));
    }
    for (auto& one : all) {
        one.get();
    }
    EXPECT_THAT(store->read()->documents(DocumentKind::SubCategory).find("s").value().text,
                ::testing::HasSubstr("\"name\":\"" + std::to_string(writers * rounds) + "\""));
}

TEST_P(Transactions, SecondWriterWaitsThenGivesUp)
{
    StoreOptions impatient = creating();
    impatient.patience = std::chrono::milliseconds(20);
    const auto own = open(impatient);
    const auto other = open(impatient);
    const auto session = own->write();
    session->categories().add("Settlement");
    const auto failure = [](Store& waiting) {
        return std::async(std::launch::async,
                          [&waiting] {
                              return failureOf(
                                  [&waiting] { waiting.write()->categories().add("Settlement"); });
                          })
            .get();
    };
    EXPECT_EQ(failure(*own), "busy");
    EXPECT_EQ(failure(*other), "busy");
    session->commit();
    EXPECT_TRUE(other->read()->categories().contains("Settlement"));
}

TEST_P(Transactions, WritingGoesOnAfterAFailure)
{
    {
        const auto session = store->write();
        session->categories().add("Lost");
        EXPECT_NE(failureOf(*session,
                            [&] { session->documents(DocumentKind::Cell).insert("none", "c1", "not JSON"); }),
                  "none");
    }
    write([](Session& session) { session.categories().add("Settlement"); });
    EXPECT_THAT(store->read()->categories().list(), ::testing::ElementsAre("Settlement"));
}

TEST_P(Transactions, ReadersWorkBesideEachOther)
{
    std::vector<std::unique_ptr<const Session>> sessions;
    sessions.reserve(20);
    for (int i = 0; i < 20; ++i) {
        sessions.push_back(store->read());
        EXPECT_TRUE(sessions.back()->projects().list().empty());
    }
}

TEST_P(Transactions, SessionHasTheTimeAtWhichItBegan)
{
    Instant now = 5;
    StoreOptions options = creating();
    options.clock = [&now] {
        return now;
    };
    const auto clocked = open(options);
    const auto session = clocked->write();
    now = 6;
    EXPECT_EQ(session->now(), 5);
    EXPECT_EQ(clocked->read()->now(), 6);
}

TEST_P(Transactions, IdentifiersRiseOverReopeningAndAClockThatGoesBack)
{
    std::string previous;
    for (const Instant now : {1000, 1000, 500, 2000, 0}) {
        StoreOptions options = creating();
        options.clock = [now] {
            return now;
        };
        store = open(options);
        for (int i = 0; i < 3; ++i) {
            const auto session = store->write();
            const std::string one = session->newIdentifier();
            const std::string two = session->newIdentifier();
            session->commit();
            EXPECT_TRUE(isIdentifier(one)) << one;
            EXPECT_LT(previous, one);
            EXPECT_LT(one, two);
            previous = two;
        }
    }
}

TEST_P(Transactions, IdentifiersOfSeveralWritersDifferAndRise)
{
    std::vector<std::future<std::vector<std::string>>> writers;
    writers.reserve(3);
    for (int writer = 0; writer < 3; ++writer) {
        writers.push_back(std::async(std::launch::async, [this] {
            const auto own = open();
            std::vector<std::string> ids;
            ids.reserve(30);
            for (int i = 0; i < 30; ++i) {
                const auto session = own->write();
                ids.push_back(session->newIdentifier());
                session->commit();
            }
            return ids;
        }));
    }
    std::set<std::string> all;
    for (auto& writer : writers) {
        const std::vector<std::string> ids = writer.get();
        EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
        all.insert(ids.begin(), ids.end());
    }
    EXPECT_EQ(all.size(), 90U);
}

TEST_P(Transactions, StoreIsMadeOnceByManyThatOpenIt)
{
    const std::unique_ptr<StoreData> fresh = GetParam().makeData();
    std::vector<std::future<void>> openings;
    openings.reserve(8);
    for (int i = 0; i < 8; ++i) {
        openings.push_back(std::async(std::launch::async, [&fresh] {
            const auto opened = fresh->open(creating());
            const auto session = opened->write();
            session->projects().insert({session->newIdentifier(), "Pit", "UTC", 0});
            session->commit();
        }));
    }
    for (auto& opening : openings) {
        EXPECT_NO_THROW(opening.get());
    }
    EXPECT_EQ(fresh->open({})->read()->projects().list().size(), 8U);
}

TEST_P(Transactions, DataThatAreMissingAreNotMadeUnlessAsked)
{
    const std::unique_ptr<StoreData> fresh = GetParam().makeData();
    EXPECT_EQ(failureOf([&fresh] { fresh->open({}); }), "cannot open");
    EXPECT_EQ(failureOf([&fresh] { fresh->open(creating()); }), "none");
    EXPECT_EQ(failureOf([&fresh] { fresh->open({}); }), "none");
}

RK_EVERY_STORE(Transactions);

} // namespace
} // namespace monitorservice::test
