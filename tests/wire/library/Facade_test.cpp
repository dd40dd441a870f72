#include "../../support/LibraryTest.h"

#include <set>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

// What applications cannot reach: the caches, construction, destruction.

template <typename Access>
constexpr bool isPossible(Access /*access*/)
{
    return std::is_invocable_v<Access, RKMonitoringData&>;
}
static_assert(isPossible([](auto& data) -> decltype(data.clear()) {}), "what is public");
static_assert(!isPossible([](auto& data) -> decltype(void(data.m_monitorings)) {}), "a cache");
static_assert(!isPossible([](auto& data) -> decltype(void(data.m_subCategoryLists)) {}), "a cache");
static_assert(!isPossible([](auto& data) -> decltype(void(data.m_subCategories)) {}), "a cache");
static_assert(!isPossible([](auto& data) -> decltype(void(data.m_dataManages)) {}), "a cache");
static_assert(!isPossible([](auto& data) -> decltype(void(data.m_groups)) {}), "a cache");
static_assert(!isPossible([](auto& data) -> decltype(void(data.m_pointLocations)) {}), "a cache");
static_assert(!std::is_default_constructible_v<RKMonitoringData>, "made by instance() alone");
static_assert(!std::is_destructible_v<RKMonitoringData>, "destroyed at exit alone");
static_assert(std::is_copy_assignable_v<RKMonitoringData>, "copied by anybody");

class Facade : public LibraryTest
{
};

TEST_F(Facade, InstanceIsOneObjectForAllThreads)
{
    std::vector<RKMonitoringData*> seen(8);
    std::vector<std::thread> threads;
    for (auto& address : seen) {
        threads.emplace_back([&address] { address = RKMonitoringData::instance(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::set<RKMonitoringData*>(seen.begin(), seen.end()).size(), 1U);
    EXPECT_EQ(seen.front(), &data);
}

TEST_F(Facade, NothingIsSentByItself)
{
    data.clear();
    EXPECT_EQ(server.requestCount(), 0);
}

TEST_F(Facade, AnUnknownIdFromTheCacheLeavesAnEmptyEntryThatNamesItself)
{
    RKMonitoring monitoring;
    monitoring.name = "before"_q;
    EXPECT_TRUE(data.getMonitoringById("c1"_q, monitoring, true));
    EXPECT_TRUE(monitoring.name.isEmpty());
    EXPECT_TRUE(data.getMonitoringName("c1"_q).isEmpty());
    EXPECT_EQ(server.requestCount(), 0);
}

TEST_F(Facade, ClearForgetsMonitoringsAndSubCategories)
{
    server.answerJson(200, R"({"_id":"c1","name":"Pit"})");
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit"_q);
    server.answerJson(200, R"({"_id":"s1","name":"Moisture"})");
    RKMonitoringSubCategory subCategory;
    EXPECT_TRUE(data.getSubCategoryById("s1"_q, subCategory));

    data.clear();

    server.answerJson(200, R"({"_id":"c1","name":"Pit, renamed"})");
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit, renamed"_q);
    server.answerJson(200, R"({"_id":"s1","name":"Moisture, renamed"})");
    EXPECT_TRUE(data.getSubCategoryById("s1"_q, subCategory));
    EXPECT_EQ(subCategory.name, "Moisture, renamed"_q);
    EXPECT_EQ(server.requestCount(), 4);
}

// A copy is made of an object that holds one monitoring.
class CopiedFacade : public Facade
{
protected:
    CopiedFacade()
    {
        server.answerJson(200, R"({"_id":"c1","name":"Pit"})");
        EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit"_q);
    }
};

TEST_F(CopiedFacade, KeepsItsOwnCaches)
{
    // Never destroyed, as the destructor is not the application's to call; kept reachable for the leak check.
    static RKMonitoringData* const copy =
        new RKMonitoringData(data); // NOLINT(cppcoreguidelines-owning-memory)
    data.clear();
    EXPECT_EQ(copy->getMonitoringName("c1"_q), "Pit"_q);
    copy->clear();
    server.answerJson(500, "{}");
    EXPECT_TRUE(copy->getMonitoringName("c1"_q).isEmpty());
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(CopiedFacade, AssignmentReplacesTheCaches)
{
    static RKMonitoringData* const other =
        new RKMonitoringData(data); // NOLINT(cppcoreguidelines-owning-memory)
    other->clear();
    EXPECT_EQ(&(*other = data), other);
    data.clear();
    EXPECT_EQ(other->getMonitoringName("c1"_q), "Pit"_q);
    EXPECT_EQ(server.requestCount(), 1);
    other->clear();
}

} // namespace
