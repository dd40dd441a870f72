#include "store/sqlite/SqliteStore.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace monitorservice {
namespace {

class SqliteAccess : public ::testing::Test
{
protected:
    SqliteAccess() : m_store(m_folder.file("data.db"), options()), session(m_store.write())
    {
        session->projects().insert({"p1", "Pit", "UTC", 1});
        session->categories().add("Settlement");
        session->tokens().insert({"t1", "Ada", "laptop", 1, std::nullopt, std::nullopt},
                                 std::string(32, '\x01'));
    }

    Grant grant(const std::string& id, const std::optional<std::string>& category, Rights rights)
    {
        return {id, "t1", "p1", category, rights, 1};
    }

private:
    static SqliteStoreOptions options()
    {
        SqliteStoreOptions options;
        options.createIfMissing = true;
        return options;
    }

    test::TemporaryFolder m_folder;
    SqliteStore m_store;

protected:
    std::unique_ptr<Session> session;
};

TEST_F(SqliteAccess, TokenIsFoundByTheHashOfItsSecretAlone)
{
    const auto token = session->tokens().findBySecretHash(std::string(32, '\x01'));
    ASSERT_TRUE(token);
    EXPECT_EQ(token->id, "t1");
    EXPECT_EQ(token->owner, "Ada");
    EXPECT_EQ(token->name, "laptop");
    EXPECT_FALSE(token->expiresAt);
    EXPECT_FALSE(token->revokedAt);
    EXPECT_FALSE(session->tokens().findBySecretHash(std::string(32, '\x02')));
    EXPECT_FALSE(session->tokens().findBySecretHash(""));
}

TEST_F(SqliteAccess, HashWithANulByteIsComparedWhole)
{
    const std::string hash("a\0b", 3);
    session->tokens().insert({"t2", "Bea", "", 1, 5, std::nullopt}, hash);
    EXPECT_EQ(session->tokens().findBySecretHash(hash)->expiresAt, std::optional<Instant>(5));
    EXPECT_FALSE(session->tokens().findBySecretHash(std::string("a\0c", 3)));
    EXPECT_FALSE(session->tokens().findBySecretHash("a"));
}

TEST_F(SqliteAccess, RevokedTokenKeepsTheFirstTime)
{
    EXPECT_TRUE(session->tokens().revoke("t1", 10));
    EXPECT_TRUE(session->tokens().revoke("t1", 20));
    EXPECT_EQ(session->tokens().find("t1")->revokedAt, std::optional<Instant>(10));
    EXPECT_FALSE(session->tokens().revoke("t9", 10));
}

TEST_F(SqliteAccess, GrantsOfOneTokenProjectAndCategoryAreOne)
{
    EXPECT_EQ(session->grants().add(grant("g1", "Settlement", Right::Read)), "g1");
    EXPECT_EQ(session->grants().add(grant("g2", "Settlement", Right::Edit)), "g1");
    ASSERT_EQ(session->grants().list().size(), 1U);
    EXPECT_EQ(session->grants().list().front().rights.names(), "read,edit");
}

TEST_F(SqliteAccess, GrantForEveryCategoryStandsApart)
{
    EXPECT_EQ(session->grants().add(grant("g1", "Settlement", Right::Read)), "g1");
    EXPECT_EQ(session->grants().add(grant("g2", std::nullopt, Right::Edit)), "g2");
    EXPECT_EQ(session->grants().add(grant("g3", std::nullopt, Right::Delete)), "g2");
    const auto grants = session->grants().ofToken("t1");
    ASSERT_EQ(grants.size(), 2U);
    EXPECT_EQ(grants[0].category, std::optional<std::string>("Settlement"));
    EXPECT_EQ(grants[1].category, std::nullopt);
    EXPECT_EQ(grants[1].rights.names(), "edit,delete");
}

TEST_F(SqliteAccess, RemovedGrantIsGone)
{
    session->grants().add(grant("g1", std::nullopt, Right::Read));
    EXPECT_TRUE(session->grants().remove("g1"));
    EXPECT_FALSE(session->grants().remove("g1"));
    EXPECT_TRUE(session->grants().ofToken("t1").empty());
}

TEST_F(SqliteAccess, GrantForWhatDoesNotExistIsAConflict)
{
    Grant unknown = grant("g1", std::nullopt, Right::Read);
    unknown.project = "p9";
    try {
        session->grants().add(unknown);
        FAIL() << "added";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.failure(), StoreFailure::Conflict);
    }
}

TEST_F(SqliteAccess, CategoriesStayInTheOrderOfTheirAddition)
{
    EXPECT_TRUE(session->categories().add("Zenith"));
    EXPECT_TRUE(session->categories().add("Alpha"));
    EXPECT_FALSE(session->categories().add("Settlement"));
    EXPECT_THAT(session->categories().list(), ::testing::ElementsAre("Settlement", "Zenith", "Alpha"));
    EXPECT_TRUE(session->categories().contains("Alpha"));
    EXPECT_FALSE(session->categories().contains("alpha"));
}

TEST_F(SqliteAccess, ProjectIsFoundAsItWasStored)
{
    const auto project = session->projects().find("p1");
    ASSERT_TRUE(project);
    EXPECT_EQ(project->name, "Pit");
    EXPECT_EQ(project->timeZone, "UTC");
    EXPECT_EQ(project->createdAt, 1);
    EXPECT_FALSE(session->projects().find("p2"));
    EXPECT_EQ(session->projects().list().size(), 1U);
}

} // namespace
} // namespace monitorservice
