#pragma once

#include "DeliveringClient.h"
#include "SiteData.h"
#include "store/OpenStore.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace monitorservice::test {

/// How often something is repeated: much more when RK_TEST_LONG is set.
inline int repetitions(int normal)
{
    return std::getenv("RK_TEST_LONG") != nullptr ? normal * 20 : normal;
}

/// Some clients of one site, and what has become of their deliveries.
class DurabilityTest : public ::testing::Test
{
protected:
    static constexpr std::size_t clientCount = 4;

    /// New clients for this site, which has no deliveries yet.
    void useSite(Site newSite)
    {
        site = std::make_unique<Site>(std::move(newSite));
        clients.clear();
        for (std::size_t number = 0; number < clientCount; ++number) {
            clients.push_back(std::make_unique<DeliveringClient>(*site, number, nextSeed()));
        }
    }

    /// Finds out what has become of requests not answered 2xx, and compares the data with what they must
    /// hold: one line for each problem.
    std::vector<std::string> problemsOf(const std::string& data)
    {
        std::vector<const SiteModel*> models;
        {
            const std::unique_ptr<Store> store = openStore(data);
            for (const auto& client : clients) {
                resolve(*client, *store);
                models.push_back(&client->model());
            }
        }
        std::vector<std::string> problems = flawsOf(data, *site);
        const std::vector<std::string> different = differences(data, *site, models);
        problems.insert(problems.end(), different.begin(), different.end());
        return problems;
    }

    void resolve(DeliveringClient& client, Store& store) const
    {
        client.resolve(heldFiles(store, *site),
                       [&](const SiteModel& model) { return holdsAllOf(store, *site, model); });
    }

    /// Expects that there are no problems; false when there are.
    bool holdsWhatItMust(const std::string& data)
    {
        const std::vector<std::string> problems = problemsOf(data);
        EXPECT_EQ(tally().missing, 0U) << "deliveries answered 2xx are not held";
        EXPECT_EQ(problems.size(), 0U) << firstOf(problems);
        return problems.empty();
    }

    DeliveryTally tally() const
    {
        DeliveryTally sum;
        for (const auto& client : clients) {
            sum += client->tally();
        }
        return sum;
    }

    static void print(const std::string& what, const DeliveryTally& tally)
    {
        std::cout << what << ": " << tally.answered << " requests answered 2xx, " << tally.withdrawn
                  << " of which took something away, " << tally.missing
                  << " deliveries missing; without a 2xx " << tally.unansweredWhole << " whole and "
                  << tally.unansweredAbsent << " absent; "
                  << (HasFailure() ? "the data are NOT as they must be" : "none in part") << std::endl;
    }

    /// The first of the problems, one on a line.
    static std::string firstOf(const std::vector<std::string>& problems)
    {
        std::string text;
        for (std::size_t i = 0; i < problems.size() && i < 6; ++i) {
            text += problems[i].substr(0, 600) + '\n';
        }
        return text;
    }

    /// The same sequence in every run.
    unsigned nextSeed() { return m_seeds(); }
    int random(int least, int most) { return std::uniform_int_distribution<int>(least, most)(m_seeds); }

    TemporaryFolder folder;
    std::filesystem::path file = folder.file("data.db");
    std::unique_ptr<Site> site;
    std::vector<std::unique_ptr<DeliveringClient>> clients;

private:
    std::mt19937 m_seeds{20'261'120};
};

} // namespace monitorservice::test
