#include "StoreContract.h"

#include <algorithm>

namespace monitorservice::test {
namespace {

using ::testing::ElementsAre;

class AccessRecords : public StoreContract
{
protected:
    AccessRecords()
    {
        session->projects().insert({"p1", "Pit", "UTC", 1});
        session->categories().add("Settlement");
        session->tokens().insert({"t1", "Ada", "laptop", 1, std::nullopt, std::nullopt},
                                 std::string(32, '\x01'));
    }

    static Grant grant(const std::string& id, const std::optional<std::string>& category, Rights rights)
    {
        return {id, "t1", "p1", category, rights, 1};
    }

    std::unique_ptr<Session> session = store->write();
};

TEST_P(AccessRecords, TokenIsFoundByTheHashOfItsSecretAlone)
{
    const auto bearer = session->tokens().findBearer(std::string(32, '\x01'));
    ASSERT_TRUE(bearer);
    EXPECT_TRUE(bearer->grants.empty());
    const Token& token = bearer->token;
    EXPECT_EQ(token.id, "t1");
    EXPECT_EQ(token.owner, "Ada");
    EXPECT_EQ(token.name, "laptop");
    EXPECT_FALSE(token.expiresAt);
    EXPECT_FALSE(token.revokedAt);
    EXPECT_FALSE(session->tokens().findBearer(std::string(32, '\x02')));
    EXPECT_FALSE(session->tokens().findBearer(""));
}

TEST_P(AccessRecords, BearerHasWhatIsGrantedToTheToken)
{
    session->tokens().insert({"t2", "Bea", "", 1, std::nullopt, std::nullopt}, "2");
    Grant whole = grant("g1", std::nullopt, Right::Administer);
    whole.project = std::nullopt;
    session->grants().add(whole);
    session->grants().add(grant("g2", "Settlement", Right::Read));
    session->grants().add(grant("g3", std::nullopt, Right::Edit));
    Grant others = grant("g4", std::nullopt, Right::Delete);
    others.token = "t2";
    session->grants().add(others);

    std::vector<Grant> grants = session->tokens().findBearer(std::string(32, '\x01'))->grants;
    std::sort(grants.begin(), grants.end(),
              [](const Grant& one, const Grant& other) { return one.id < other.id; });
    ASSERT_EQ(grants.size(), 3U);
    EXPECT_EQ(grants[0].project, std::nullopt);
    EXPECT_EQ(grants[0].rights.names(), "administer");
    EXPECT_EQ(grants[1].category, std::optional<std::string>("Settlement"));
    EXPECT_EQ(grants[1].token, "t1");
    EXPECT_EQ(grants[1].createdAt, 1);
    EXPECT_EQ(grants[2].project, std::optional<std::string>("p1"));
    EXPECT_EQ(grants[2].category, std::nullopt);
}

TEST_P(AccessRecords, HashWithANulByteIsComparedWhole)
{
    const std::string hash("a\0b", 3);
    session->tokens().insert({"t2", "Bea", "", 1, 5, std::nullopt}, hash);
    EXPECT_EQ(session->tokens().findBearer(hash)->token.expiresAt, std::optional<Instant>(5));
    EXPECT_FALSE(session->tokens().findBearer(std::string("a\0c", 3)));
    EXPECT_FALSE(session->tokens().findBearer("a"));
}

TEST_P(AccessRecords, TokensAreListedByIdentifier)
{
    session->tokens().insert({"t0", "Bea", "", 1, std::nullopt, 7}, "0");
    session->tokens().insert({"T2", "Cleo", "", 1, 9, std::nullopt}, "2");
    std::vector<std::string> ids;
    for (const Token& token : session->tokens().list()) {
        ids.push_back(token.id);
    }
    EXPECT_THAT(ids, ElementsAre("T2", "t0", "t1"));
}

TEST_P(AccessRecords, TokenOrSecretThatIsThereIsAConflict)
{
    EXPECT_EQ(failureOf(*session,
                        [this] {
                            session->tokens().insert({"t2", "Bea", "", 1, std::nullopt, std::nullopt},
                                                     std::string(32, '\x01'));
                        }),
              "conflict");
}

TEST_P(AccessRecords, RevokedTokenKeepsTheFirstTime)
{
    EXPECT_TRUE(session->tokens().revoke("t1", 10));
    EXPECT_TRUE(session->tokens().revoke("t1", 20));
    EXPECT_EQ(session->tokens().find("t1")->revokedAt, std::optional<Instant>(10));
    EXPECT_FALSE(session->tokens().revoke("t9", 10));
}

TEST_P(AccessRecords, GrantsOfOneTokenProjectAndCategoryAreOne)
{
    EXPECT_EQ(session->grants().add(grant("g1", "Settlement", Right::Read)), "g1");
    EXPECT_EQ(session->grants().add(grant("g2", "Settlement", Right::Edit)), "g1");
    ASSERT_EQ(session->grants().list().size(), 1U);
    EXPECT_EQ(session->grants().list().front().rights.names(), "read,edit");
}

TEST_P(AccessRecords, GrantForEveryCategoryStandsApart)
{
    EXPECT_EQ(session->grants().add(grant("g1", "Settlement", Right::Read)), "g1");
    EXPECT_EQ(session->grants().add(grant("g2", std::nullopt, Right::Edit)), "g2");
    EXPECT_EQ(session->grants().add(grant("g3", std::nullopt, Right::Delete)), "g2");
    EXPECT_EQ(session->grants().ofToken("t1").size(), 2U);
    const auto grants = session->grants().list();
    ASSERT_EQ(grants.size(), 2U);
    EXPECT_EQ(grants[0].category, std::optional<std::string>("Settlement"));
    EXPECT_EQ(grants[1].category, std::nullopt);
    EXPECT_EQ(grants[1].rights.names(), "edit,delete");
}

TEST_P(AccessRecords, GrantOfTheWholeServiceIsOfNoProject)
{
    Grant whole = grant("g1", std::nullopt, Right::Administer);
    whole.project = std::nullopt;
    EXPECT_EQ(session->grants().add(whole), "g1");
    EXPECT_EQ(session->grants().add(grant("g2", std::nullopt, Right::Read)), "g2");
    whole.id = "g3";
    EXPECT_EQ(session->grants().add(whole), "g1") << "there is one";
    EXPECT_EQ(session->grants().ofToken("t1").size(), 2U);
    const auto grants = session->grants().list();
    ASSERT_EQ(grants.size(), 2U);
    EXPECT_EQ(grants[0].project, std::nullopt);
    EXPECT_EQ(grants[0].category, std::nullopt);
    EXPECT_EQ(grants[0].rights.names(), "administer");
    EXPECT_EQ(grants[1].project, "p1");
}

TEST_P(AccessRecords, GrantOfACategoryIsOfAProject)
{
    Grant whole = grant("g1", "Settlement", Right::Administer);
    whole.project = std::nullopt;
    EXPECT_EQ(failureOf([&] { session->grants().add(whole); }), "conflict");
}

TEST_P(AccessRecords, RemovedGrantIsGone)
{
    session->grants().add(grant("g1", std::nullopt, Right::Read));
    EXPECT_TRUE(session->grants().remove("g1"));
    EXPECT_FALSE(session->grants().remove("g1"));
    EXPECT_TRUE(session->grants().ofToken("t1").empty());
}

TEST_P(AccessRecords, GrantForAProjectThatDoesNotExistIsAConflict)
{
    Grant unknown = grant("g1", std::nullopt, Right::Read);
    unknown.project = "p9";
    EXPECT_EQ(failureOf([&] { session->grants().add(unknown); }), "conflict");
}

TEST_P(AccessRecords, GrantForACategoryThatDoesNotExistIsAConflict)
{
    EXPECT_EQ(failureOf([this] { session->grants().add(grant("g1", "Unheard", Right::Read)); }), "conflict");
}

TEST_P(AccessRecords, CategoriesStayInTheOrderOfTheirAddition)
{
    EXPECT_TRUE(session->categories().add("Zenith"));
    EXPECT_TRUE(session->categories().add("Alpha"));
    EXPECT_FALSE(session->categories().add("Settlement"));
    EXPECT_THAT(session->categories().list(), ElementsAre("Settlement", "Zenith", "Alpha"));
    EXPECT_TRUE(session->categories().contains("Alpha"));
    EXPECT_FALSE(session->categories().contains("alpha"));
}

TEST_P(AccessRecords, ProjectIsFoundAsItWasStored)
{
    const auto project = session->projects().find("p1");
    ASSERT_TRUE(project);
    EXPECT_EQ(project->name, "Pit");
    EXPECT_EQ(project->timeZone, "UTC");
    EXPECT_EQ(project->createdAt, 1);
    EXPECT_FALSE(session->projects().find("p2"));
    EXPECT_EQ(session->projects().list().size(), 1U);
}

TEST_P(AccessRecords, ProjectOfAKnownIdentifierIsAConflict)
{
    EXPECT_EQ(failureOf(*session,
                        [this] {
                            session->projects().insert({"p1", "Other", "UTC", 1});
                        }),
              "conflict");
}

RK_EVERY_STORE(AccessRecords);

} // namespace
} // namespace monitorservice::test
