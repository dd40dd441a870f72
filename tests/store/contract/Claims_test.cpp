#include "StoreContract.h"

#include <algorithm>
#include <functional>
#include <future>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace monitorservice::test {
namespace {

using Claimed = std::vector<std::string>; // sub-categories; empty: everything

Claim claimOf(const Claimed& subCategories)
{
    Claim claim;
    if (!subCategories.empty()) {
        claim.targets.emplace();
        for (const std::string& subCategory : subCategories) {
            claim.targets->push_back({"c", subCategory});
        }
    }
    return claim;
}

const std::vector<std::string> targets{"1", "2", "3"};

// What sessions claim in turn: one target mostly, two, or everything.
Claimed randomClaim(std::mt19937& random)
{
    const auto draw = random() % 10;
    if (draw == 0) {
        return {};
    }
    const std::string& first = targets.at(random() % targets.size());
    const std::string& second = targets.at(random() % targets.size());
    return draw < 4 && first != second ? Claimed{first, second} : Claimed{first};
}

const std::vector<std::string>& claimedBy(const Claimed& claimed)
{
    return claimed.empty() ? targets : claimed;
}

class Claims : public StoreContract
{
protected:
    static constexpr int writers = 6;

    static std::string dataManage(const std::string& subCategory, int number)
    {
        return R"({"_id":"d)" + subCategory + R"(","projectId":"p","cellId":"c","subCategoryId":")" +
               subCategory +
               R"(","createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada","updatedAt":)"
               R"("2015-12-21T06:30:00.123Z","updatedBy":"Ada","lastCount":)" +
               std::to_string(number) + "}";
    }

    static int numberOf(const Session& session, const std::string& subCategory)
    {
        const std::string text = session.documents(DocumentKind::DataManage).find("d" + subCategory)->text;
        return std::stoi(text.substr(text.find("lastCount\":") + 11));
    }

    void makeTargets()
    {
        write([](Session& session) {
            session.projects().insert({"p", "Pit", "UTC", 1});
            session.categories().add("Settlement");
            session.documents(DocumentKind::Cell)
                .insert("p", "c",
                        R"({"_id":"c","projectId":"p","name":"Tower","category":"Settlement","createdAt":)"
                        R"("2015-12-21T06:30:00.123Z","createdBy":"Ada","updatedAt":)"
                        R"("2015-12-21T06:30:00.123Z","updatedBy":"Ada"})");
            for (const std::string& target : targets) {
                session.documents(DocumentKind::SubCategory)
                    .insert("p", target,
                            R"({"_id":")" + target + R"(","projectId":"p","name":")" + target +
                                R"(","category":"Settlement","alias":""})");
                session.documents(DocumentKind::DataManage).insert("p", "d" + target, dataManage(target, 0));
            }
        });
    }

    // As many writers as are in two services.
    void writeAtOnce(Store& other, const std::function<void(Store& store, unsigned seed)>& writing)
    {
        std::vector<std::future<void>> all;
        all.reserve(writers);
        for (unsigned seed = 0; seed < writers; ++seed) {
            all.push_back(std::async(std::launch::async, [this, &other, &writing, seed] {
                writing(seed % 2 == 0 ? *store : other, seed);
            }));
        }
        for (auto& one : all) {
            one.get();
        }
    }
};

// Each adds one to numbers that it read: none is lost.
TEST_P(Claims, WhatIsClaimedIsChangedByOneAtATime)
{
    makeTargets();
    std::mutex guard;
    std::map<std::string, int> expected;
    const auto count = [&](Store& writing, unsigned seed) {
        std::mt19937 random(seed);
        for (int round = 0; round < 25; ++round) {
            const Claimed claimed = randomClaim(random);
            const auto session = writing.write(claimOf(claimed));
            for (const std::string& target : claimedBy(claimed)) {
                session->documents(DocumentKind::DataManage)
                    .replace("p", "d" + target, dataManage(target, numberOf(*session, target) + 1));
            }
            session->commit();
            const std::lock_guard lock(guard);
            for (const std::string& target : claimedBy(claimed)) {
                ++expected[target];
            }
        }
    };
    const auto other = open();
    writeAtOnce(*other, count);
    const auto session = store->read();
    for (const std::string& target : targets) {
        EXPECT_EQ(numberOf(*session, target), expected[target]) << target;
    }
}

// The clock of one service is behind that of the other.
TEST_P(Claims, IdentifiersDifferAndRiseForEachTarget)
{
    StoreOptions late = creating();
    late.clock = [] {
        return systemNow() - 3'600'000;
    };
    const auto other = open(late);
    std::mutex guard;
    std::map<std::string, std::vector<std::string>> given;
    std::multiset<std::string> all;
    const auto give = [&](Store& writing, unsigned seed) {
        std::mt19937 random(seed);
        for (int round = 0; round < 40; ++round) {
            const Claimed claimed = randomClaim(random);
            const auto session = writing.write(claimOf(claimed));
            std::vector<std::string> ids;
            for (int i = 0; i < 3; ++i) {
                ids.push_back(session->newIdentifier());
            }
            {
                // Nobody else has these targets before the commit.
                const std::lock_guard lock(guard);
                if (claimed.empty()) {
                    EXPECT_TRUE(all.empty() || *all.rbegin() < ids.front()) << ids.front();
                }
                all.insert(ids.begin(), ids.end());
                for (const std::string& target : claimedBy(claimed)) {
                    given[target].insert(given[target].end(), ids.begin(), ids.end());
                }
            }
            session->commit();
        }
    };
    writeAtOnce(*other, give);
    for (const std::string& target : targets) {
        EXPECT_TRUE(std::is_sorted(given[target].begin(), given[target].end())) << target;
    }
    EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), all.size());
    EXPECT_EQ(store->read()->lastIdentifier(), *all.rbegin());
}

TEST_P(Claims, WhoClaimsWhatIsClaimedWaitsThenGivesUp)
{
    StoreOptions impatient = creating();
    impatient.patience = std::chrono::milliseconds(20);
    const auto own = open(impatient);
    const auto other = open(impatient);
    const auto failure = [](Store& waiting, const Claimed& claimed) {
        return std::async(std::launch::async,
                          [&] { return failureOf([&] { waiting.write(claimOf(claimed)); }); })
            .get();
    };
    for (const auto& [had, wanted] : std::vector<std::pair<Claimed, Claimed>>{
             {{"1"}, {"1"}}, {{"1"}, {}}, {{}, {"1"}}, {{"1", "2"}, {"2", "3"}}, {{}, {}}}) {
        const auto session = own->write(claimOf(had));
        EXPECT_EQ(failure(*own, wanted), "busy");
        EXPECT_EQ(failure(*other, wanted), "busy");
    }
    EXPECT_EQ(failure(*other, {}), "none");
}

// What is read after the claim was had is what the one before has left.
TEST_P(Claims, WhoWaitedSeesWhatItWaitedFor)
{
    makeTargets();
    const auto other = open();
    for (const auto& [had, wanted] :
         std::vector<std::pair<Claimed, Claimed>>{{{"1"}, {"1", "2"}}, {{"1"}, {}}, {{}, {"1"}}}) {
        auto session = store->write(claimOf(had));
        const int before = numberOf(*session, "1");
        auto waiting = std::async(std::launch::async, [&other, claimed = wanted] {
            const auto next = other->write(claimOf(claimed));
            return numberOf(*next, "1");
        });
        session->documents(DocumentKind::DataManage).replace("p", "d1", dataManage("1", before + 1));
        session->commit();
        session.reset();
        EXPECT_EQ(waiting.get(), before + 1);
    }
}

RK_EVERY_STORE(Claims);

} // namespace
} // namespace monitorservice::test
