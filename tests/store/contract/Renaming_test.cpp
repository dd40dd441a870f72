#include "KindsModel.h"
#include "StoreContract.h"
#include "store/StoreContents.h"

namespace monitorservice::test {
namespace {

using ::testing::ElementsAre;

// Renaming and removing what everything else refers to: projects and categories.
class Renaming : public StoreContract
{
protected:
    Renaming()
    {
        write([](Session& session) {
            session.projects().insert({"p1", "Pit", "UTC", 1});
            session.projects().insert({"p2", "Slope", "Europe/Vienna", 2});
            for (const char* const category : {"Settlement", "Inclinometer", "Strain"}) {
                session.categories().add(category);
            }
            session.tokens().insert({"t1", "Ada", "", 1, std::nullopt, std::nullopt}, std::string(32, 'a'));
        });
    }

    static void insertCell(Session& session, const std::string& project, const std::string& category)
    {
        session.documents(DocumentKind::Cell)
            .insert(project, "c1",
                    R"({"_id":"c1","projectId":")" + project + R"(","name":"Tower","category":")" + category +
                        R"(","alarmTo":[],"links":[],"createdAt":"2015-12-21T06:30:00.123Z","createdBy":)" +
                        R"("Ada","updatedAt":"2015-12-21T06:30:00.123Z","updatedBy":"Ada"})");
    }

    static void insertSubCategory(Session& session, const std::string& project, const std::string& category)
    {
        session.documents(DocumentKind::SubCategory)
            .insert(project, "s1",
                    R"({"_id":"s1","projectId":")" + project + R"(","name":"Ground","category":")" +
                        category + R"(","alias":""})");
    }

    static void insertChange(Session& session, const std::string& project, const std::string& category)
    {
        session.documents(DocumentKind::Change)
            .insert(project, "h1",
                    R"({"_id":"h1","projectId":")" + project + R"(","category":")" + category +
                        R"(","cellId":"","subCategoryId":"","action":"cell.deleted","subject":"c1",)" +
                        R"("createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada"})");
    }

    static void insertGrant(Session& session, const std::string& project, const std::string& category)
    {
        session.grants().add({"g1", "t1", project, category, Right::Read, 1});
    }

    using Insert = void (*)(Session&, const std::string&, const std::string&);

    // What a removal ends with while there is what `insert` makes in project p1 and category Settlement.
    template <typename Remove>
    std::string failureWith(Insert insert, Remove&& remove)
    {
        const auto session = store->write();
        insert(*session, "p1", "Settlement");
        return failureOf([&] { remove(*session); });
    }
};

TEST_P(Renaming, ProjectGetsAnotherNameAndNothingElse)
{
    write([](Session& session) {
        insertCell(session, "p1", "Settlement");
        EXPECT_TRUE(session.projects().rename("p1", "Hafen \"Süd\""));
        EXPECT_FALSE(session.projects().rename("p3", "Nowhere"));
    });
    const auto session = store->read();
    const auto project = session->projects().find("p1");
    ASSERT_TRUE(project);
    EXPECT_EQ(project->name, "Hafen \"Süd\"");
    EXPECT_EQ(project->timeZone, "UTC");
    EXPECT_EQ(project->createdAt, 1);
    EXPECT_EQ(session->projects().find("p2")->name, "Slope");
    EXPECT_EQ(session->documents(DocumentKind::Cell).find("c1")->project, "p1");
}

TEST_P(Renaming, ProjectIsRemovedWhenNothingBelongsToIt)
{
    write([](Session& session) {
        insertCell(session, "p1", "Settlement");
        EXPECT_TRUE(session.projects().remove("p2"));
        EXPECT_FALSE(session.projects().remove("p2"));
        EXPECT_FALSE(session.projects().find("p2"));
    });
    EXPECT_EQ(store->read()->projects().list().size(), 1U);
}

TEST_P(Renaming, ProjectThatIsUsedIsAConflict)
{
    const std::vector<Insert> uses{insertCell, insertSubCategory, insertGrant};
    for (std::size_t use = 0; use < uses.size(); ++use) {
        EXPECT_EQ(failureWith(uses[use], [](Session& session) { session.projects().remove("p1"); }),
                  "conflict")
            << use;
    }
    EXPECT_EQ(store->read()->projects().list().size(), 2U);
}

TEST_P(Renaming, EntriesOfTheTrailOutliveTheirProject)
{
    write([](Session& session) {
        insertChange(session, "p1", "Settlement");
        EXPECT_TRUE(session.projects().remove("p1"));
    });
    const auto session = store->read();
    EXPECT_EQ(session->documents(DocumentKind::Change).find("h1")->project, "p1");
    DocumentQuery query;
    query.project = "p1";
    EXPECT_EQ(session->documents(DocumentKind::Change).count(query), 1U);
}

TEST_P(Renaming, EntriesOfTheTrailMayBeOfNoProject)
{
    write([](Session& session) { insertChange(session, "", ""); });
    const auto session = store->read();
    EXPECT_EQ(session->documents(DocumentKind::Change).find("h1")->project, "");
    DocumentQuery query;
    query.project = "p1";
    EXPECT_EQ(session->documents(DocumentKind::Change).count(query), 0U);
    query.everyProject = true;
    EXPECT_EQ(session->documents(DocumentKind::Change).count(query), 1U);
}

TEST_P(Renaming, CategoryIsRemovedWhenNothingIsOfIt)
{
    write([](Session& session) {
        insertCell(session, "p1", "Settlement");
        // The trail tells of what may be gone.
        insertChange(session, "p1", "Strain");
        EXPECT_TRUE(session.categories().remove("Strain"));
        EXPECT_FALSE(session.categories().remove("Strain"));
    });
    const auto session = store->read();
    EXPECT_THAT(session->categories().list(), ElementsAre("Settlement", "Inclinometer"));
    EXPECT_EQ(session->documents(DocumentKind::Change).find("h1")->category, "Strain");
}

TEST_P(Renaming, CategoryThatIsUsedIsAConflict)
{
    const std::vector<Insert> uses{insertCell, insertSubCategory, insertGrant};
    for (std::size_t use = 0; use < uses.size(); ++use) {
        EXPECT_EQ(failureWith(uses[use], [](Session& session) { session.categories().remove("Settlement"); }),
                  "conflict")
            << use;
    }
    EXPECT_EQ(store->read()->categories().list().size(), 3U);
}

TEST_P(Renaming, CategoryKeepsItsPlace)
{
    write([](Session& session) {
        EXPECT_TRUE(session.categories().rename("Inclinometer", "Tilt"));
        EXPECT_FALSE(session.categories().rename("Inclinometer", "Tilt"));
        EXPECT_TRUE(session.categories().rename("Strain", "strain"));
    });
    EXPECT_THAT(store->read()->categories().list(), ElementsAre("Settlement", "Tilt", "strain"));
}

TEST_P(Renaming, NameOfAnotherCategoryIsAConflict)
{
    write([](Session& session) { insertCell(session, "p1", "Settlement"); });
    {
        const auto session = store->write();
        EXPECT_EQ(failureOf([&] { session->categories().rename("Settlement", "Strain"); }), "conflict");
    }
    EXPECT_EQ(store->read()->documents(DocumentKind::Cell).find("c1")->category, "Settlement");
}

TEST_P(Renaming, WhatIsNotCommittedIsNotRenamed)
{
    write([](Session& session) {
        insertCell(session, "p1", "Settlement");
        insertGrant(session, "p1", "Settlement");
    });
    const std::vector<std::string> before = contentsOf(*store);
    {
        const auto session = store->write();
        EXPECT_TRUE(session->categories().rename("Settlement", "Heave"));
        EXPECT_EQ(session->documents(DocumentKind::Cell).find("c1")->category, "Heave");
    }
    EXPECT_EQ(contentsOf(*store), before);
}

TEST_P(Renaming, ReferencesAreCheckedAfterARenaming)
{
    const auto session = store->write();
    EXPECT_TRUE(session->categories().rename("Settlement", "Heave"));
    EXPECT_EQ(failureOf(*session, [&] { insertCell(*session, "p1", "Settlement"); }), "conflict");
}

TEST_P(Renaming, GrantsOfTheCategoryGoWithIt)
{
    write([](Session& session) {
        session.grants().add({"g1", "t1", "p1", "Settlement", Right::Read, 1});
        session.grants().add({"g2", "t1", "p1", std::nullopt, Right::Edit, 1});
        session.grants().add({"g3", "t1", "p2", "Strain", Right::Read, 1});
        EXPECT_TRUE(session.categories().rename("Settlement", "Heave"));
    });
    const std::vector<Grant> grants = store->read()->grants().list();
    ASSERT_EQ(grants.size(), 3U);
    EXPECT_EQ(grants[0].category, "Heave");
    EXPECT_EQ(grants[0].rights.names(), "read");
    EXPECT_EQ(grants[1].category, std::nullopt);
    EXPECT_EQ(grants[2].category, "Strain");
}

class RenamingOfCategory : public StoreContract
{
};

// The text with one category in place of another, where it stands as the category of the document.
std::string recategorised(std::string text)
{
    const std::string from = R"("category":"Settlement")";
    const std::size_t at = text.find(from);
    return at == std::string::npos ? text : text.replace(at, from.size(), R"("category":"Heave \"é\" \\ 1")");
}

// Everything that is of the category, entries of the trail too, is found under its new name; all else stays
// byte for byte.
TEST_P(RenamingOfCategory, AllThatIsOfItGoesWithIt)
{
    const std::string heave = "Heave \"é\" \\ 1";
    Chance chance(20240303);
    const auto session = store->write();
    const KindsModel model(*session, chance);
    EXPECT_TRUE(session->categories().rename("Settlement", heave));
    std::size_t moved = 0;
    for (const DocumentKind kind : allDocumentKinds) {
        for (const KnownDocument& known : model.of(kind)) {
            const auto stored = session->documents(kind).find(known.id);
            ASSERT_TRUE(stored) << known.id;
            const bool isMoved = known.category == "Settlement";
            EXPECT_EQ(stored->category, isMoved ? heave : known.category);
            EXPECT_EQ(stored->text, recategorised(known.text));
            moved += isMoved ? 1 : 0;
        }
        DocumentQuery query;
        query.project = "p1";
        query.categories = {"Settlement"};
        EXPECT_EQ(session->documents(kind).count(query), 0U);
        query.categories = {heave};
        EXPECT_GT(session->documents(kind).count(query), 0U);
    }
    EXPECT_GT(moved, 20U);
    session->commit();
}

RK_EVERY_STORE(Renaming);
RK_EVERY_STORE(RenamingOfCategory);

} // namespace
} // namespace monitorservice::test
