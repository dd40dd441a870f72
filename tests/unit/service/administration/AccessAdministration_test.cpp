#include "AdministrationFixture.h"
#include "access/Secret.h"
#include "administration/GrantAdministration.h"
#include "administration/TokenAdministration.h"

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class TokensAdministered : public test::AdministrationFixture
{
protected:
    TokenAdministration administration{*session, "root"};
};

TEST_F(TokensAdministered, AreToldOfWithoutTheirSecret)
{
    const NewToken made = administration.create({"Ada", "laptop", 1999999999999});
    EXPECT_EQ(session->tokens().findBearer(sha256(made.secret))->token.id, made.token.id);
    const Token revoked = administration.revoke(made.token.id);
    EXPECT_EQ(revoked.revokedAt, session->now());
    administration.revoke(made.token.id);
    std::vector<std::string> all;
    for (const Change& entry : entries()) {
        all.push_back(told(entry));
        EXPECT_EQ(entry.subject, made.token.id);
        EXPECT_EQ(entry.name, "Ada");
        EXPECT_EQ(entry.author.name, "root");
        EXPECT_THAT(toDocument(entry), Not(HasSubstr(made.secret.substr(4))));
    }
    const std::string valid = toDocument(made.token);
    EXPECT_EQ(valid, R"({"_id":")" + made.token.id +
                         R"(","owner":"Ada","name":"laptop","createdAt":"2015-12-21T06:30:00.123Z",)"
                         R"("expiresAt":"2033-05-18T03:33:19.999Z","revokedAt":null})");
    EXPECT_THAT(all, ElementsAre("token.created of \"\", \"\": null -> " + valid,
                                 "token.revoked of \"\", \"\": " + valid + " -> " + toDocument(revoked)));
}

TEST_F(TokensAdministered, AreOfSomebody)
{
    EXPECT_EQ(refusalOf([&] { administration.create({" ", "", std::nullopt}); }), "bad owner: is empty");
    EXPECT_EQ(refusalOf([&] {
                  administration.create({"Ada", "\n", std::nullopt});
              }),
              "bad name: has a control character");
    EXPECT_EQ(refusalOf([&] { administration.revoke("x"); }), "unknown token: there is no token \"x\"");
}

class GrantsAdministered : public test::AdministrationFixture
{
protected:
    Grant grantOf(const std::optional<std::string>& project, const std::optional<std::string>& category,
                  Rights rights) const
    {
        return {"", token, project, category, rights, 0};
    }

    // What is told since the token was made.
    std::vector<std::string> allTold() const
    {
        std::vector<std::string> all;
        for (const Change& entry : entries()) {
            if (entry.action != "token.created") {
                all.push_back(told(entry));
                EXPECT_EQ(entry.name, "Ada") << "whose token it is for";
                EXPECT_EQ(entry.author.name, "root");
            }
        }
        return all;
    }

    const std::string token =
        TokenAdministration(*session, "root").create({"Ada", "", std::nullopt}).token.id;
    GrantAdministration administration{*session, "root"};
};

TEST_F(GrantsAdministered, AreToldOfWhereTheyAreHeld)
{
    const Grant inCategory = administration.add(grantOf("p1", "Settlement", Right::Read));
    const Grant inProject = administration.add(grantOf("p1", std::nullopt, Right::Edit));
    const Grant whole = administration.add(grantOf(std::nullopt, std::nullopt, Right::Administer));
    EXPECT_EQ(session->grants().list().size(), 3U);
    administration.revoke(whole.id);
    EXPECT_EQ(session->grants().list().size(), 2U);
    EXPECT_EQ(toDocument(inCategory), R"({"_id":")" + inCategory.id + R"(","tokenId":")" + token +
                                          R"(","projectId":"p1","category":"Settlement","rights":"read",)"
                                          R"("createdAt":"2015-12-21T06:30:00.123Z"})");
    EXPECT_THAT(allTold(),
                ElementsAre("grant.created of \"p1\", \"Settlement\": null -> " + toDocument(inCategory),
                            "grant.created of \"p1\", \"\": null -> " + toDocument(inProject),
                            "grant.created of \"\", \"\": null -> " + toDocument(whole),
                            "grant.revoked of \"\", \"\": " + toDocument(whole) + " -> null"));
}

TEST_F(GrantsAdministered, AreChangedByMoreRightsAlone)
{
    const Grant first = administration.add(grantOf("p1", std::nullopt, Right::Read));
    const Grant more = administration.add(grantOf("p1", std::nullopt, Right::Edit));
    EXPECT_EQ(more.id, first.id);
    EXPECT_EQ(more.rights.names(), "read,edit");
    EXPECT_EQ(administration.add(grantOf("p1", std::nullopt, Right::Read)).rights.names(), "read,edit");
    EXPECT_EQ(toDocument(session->grants().list().front()), toDocument(more));
    EXPECT_THAT(allTold(), ElementsAre("grant.created of \"p1\", \"\": null -> " + toDocument(first),
                                       "grant.changed of \"p1\", \"\": " + toDocument(first) + " -> " +
                                           toDocument(more)));
}

TEST_F(GrantsAdministered, AreForWhatExists)
{
    Grant stranger = grantOf("p1", std::nullopt, Right::Read);
    stranger.token = "x";
    EXPECT_EQ(refusalOf([&] { administration.add(stranger); }), "unknown token: there is no token \"x\"");
    EXPECT_EQ(refusalOf([&] { administration.add(grantOf("p9", std::nullopt, Right::Read)); }),
              "unknown project: there is no project \"p9\"");
    EXPECT_EQ(refusalOf([&] { administration.add(grantOf("p1", "Strain", Right::Read)); }),
              "unknown category: there is no category \"Strain\"");
    EXPECT_EQ(refusalOf([&] { administration.revoke("g9"); }), "unknown grant: there is no grant \"g9\"");
    TokenAdministration(*session, "root").revoke(token);
    EXPECT_EQ(refusalOf([&] { administration.add(grantOf("p1", std::nullopt, Right::Read)); }),
              "contradiction token: token " + token + " has been revoked");
}

} // namespace
} // namespace monitorservice
