#include "AdminFixture.h"
#include "store/OpenStore.h"

namespace monitorservice {
namespace {

using test::CommandResult;
using ::testing::AllOf;
using ::testing::HasSubstr;

// Renaming and removing projects, categories and sub-categories.
class Removal : public test::AdminFixture
{
protected:
    Removal() { admin({"category", "add", "Settlement", "Inclinometer"}); }

    template <typename Action>
    void write(Action&& action) const
    {
        const std::unique_ptr<Store> store = openStore(file);
        const auto session = store->write();
        action(*session);
        session->commit();
    }

    void insert(DocumentKind kind, const std::string& id, const std::string& members) const
    {
        write([&](Session& session) {
            session.documents(kind).insert(
                project, id, R"({"_id":")" + id + R"(","projectId":")" + project + "\"," + members + "}");
        });
    }

    void insertCell() const
    {
        insert(DocumentKind::Cell, "c1",
               R"("name":"Tower","category":"Settlement","alarmTo":[],"links":[],)"
               R"("createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada",)"
               R"("updatedAt":"2015-12-21T06:30:00.123Z","updatedBy":"Ada")");
    }

    const std::string project = newProject();
};

TEST_F(Removal, ProjectIsRenamed)
{
    EXPECT_EQ(line({"project", "rename", project, "--name", "Grube"}), "");
    EXPECT_EQ(memberAt(line({"project", "list", "--json"}), 0, "name"), R"("Grube")");
    expectFailure({"project", "rename", project, "--name", " "}, "--name is empty");
    expectFailure({"project", "rename", "Grub", "--name", "Pit"},
                  "there is no project \"Grub\"; did you mean " + project + " (\"Grube\")?");
}

TEST_F(Removal, ProjectsThatAreCalledAlikeAreWarnedOf)
{
    const CommandResult same = admin({"project", "create", "--name", "Pit", "--time-zone", "UTC"});
    EXPECT_EQ(same.exitCode, 0);
    EXPECT_THAT(same.error, HasSubstr("warning: project " + project + " is called \"Pit\" too"));
    EXPECT_EQ(admin({"project", "rename", same.line(), "--name", "Slope"}).error, "");
    EXPECT_THAT(admin({"project", "rename", same.line(), "--name", "PIT"}).error, HasSubstr("\"Pit\" too"));
}

TEST_F(Removal, ProjectIsRemovedWhenNothingBelongsToIt)
{
    const std::string subCategory = newSubCategory(project, "Ground");
    insertCell();
    const std::string grant =
        line({"grant", "--token", newTokenId("Ada"), "--project", project, "--role", "reader"});
    expectFailure({"project", "remove", project},
                  "is still in use and stays: monitorings: 1, sub-categories: 1, grants: 1");
    line({"grant", "revoke", grant});
    line({"subcategory", "remove", subCategory});
    expectFailure({"project", "remove", project}, "stays: monitorings: 1\n");
    write([this](Session& session) { session.documents(DocumentKind::Cell).remove(project, "c1"); });
    EXPECT_EQ(line({"project", "remove", project}), "");
    EXPECT_EQ(line({"project", "list", "--json"}), "[]");
    expectFailure({"project", "remove", project}, "there is no project");
}

TEST_F(Removal, ProjectsEntriesInTheAuditTrailStay)
{
    insert(DocumentKind::Change, "h1",
           R"("category":"Settlement","cellId":"","subCategoryId":"","action":"cell.deleted","subject":"c1",)"
           R"("createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada")");
    EXPECT_EQ(line({"project", "remove", project}), "");
    const std::unique_ptr<Store> store = openStore(file);
    EXPECT_EQ(store->read()->documents(DocumentKind::Change).find("h1")->project, project);
}

TEST_F(Removal, CategoryIsRenamedWithAllThatIsOfIt)
{
    newSubCategory(project, "Ground");
    insertCell();
    line({"grant", "--token", newTokenId("Ada"), "--project", project, "--category", "Settlement", "--role",
          "reader"});
    EXPECT_EQ(line({"category", "rename", "Settlement", "Setzung"}), "");
    EXPECT_EQ(line({"category", "list"}), "Setzung\nInclinometer");
    EXPECT_EQ(memberAt(line({"subcategory", "list", "--json"}), 0, "category"), R"("Setzung")");
    EXPECT_EQ(memberAt(line({"grant", "list", "--json"}), 0, "category"), R"("Setzung")");
    const std::unique_ptr<Store> store = openStore(file);
    EXPECT_EQ(store->read()->documents(DocumentKind::Cell).find("c1")->category, "Setzung");
}

TEST_F(Removal, CategoryIsRenamedToWhatThereIsNotYet)
{
    expectFailure({"category", "rename", "Setlement", "Setzung"}, "did you mean \"Settlement\"?");
    expectFailure({"category", "rename", "Settlement", "Inclinometer"},
                  "there is a category \"Inclinometer\" already");
    expectFailure({"category", "rename", "Settlement", ""}, "is empty");
    EXPECT_EQ(admin({"category", "rename", "Settlement", "SETTLEMENT"}).error, "");
    EXPECT_THAT(admin({"category", "add", "settlement"}).error,
                HasSubstr("warning: there is a category \"SETTLEMENT\" too"));
    EXPECT_THAT(admin({"category", "rename", "Inclinometer", "Settlement"}).error,
                AllOf(HasSubstr("\"SETTLEMENT\" too"), HasSubstr("\"settlement\" too")));
}

TEST_F(Removal, CategoryIsRemovedWhenNothingIsOfIt)
{
    const std::string subCategory = newSubCategory(project, "Ground");
    insertCell();
    expectFailure({"category", "remove", "Settlement"},
                  "category \"Settlement\" is still in use and stays: monitorings: 1, sub-categories: 1 in "
                  "project \"Pit\"");
    expectFailure({"category", "remove", "Settlment"}, "did you mean \"Settlement\"?");
    EXPECT_EQ(line({"category", "remove", "Inclinometer"}), "");
    EXPECT_EQ(line({"category", "list"}), "Settlement");
}

TEST_F(Removal, SubCategoryIsRemovedWhenNothingUsesIt)
{
    const std::string subCategory = newSubCategory(project, "Ground");
    insertCell();
    const std::string members = R"("cellId":"c1","subCategoryId":")" + subCategory + R"(",)";
    const std::string stamp =
        R"("createdAt":"2015-12-21T06:30:00.123Z","updatedAt":"2015-12-21T06:30:00.123Z")";
    insert(DocumentKind::Group, "g1", members + R"("groupName":"Corner",)" + stamp);
    insert(DocumentKind::DataManage, "d1", members + stamp);
    insert(DocumentKind::Alarm, "a1", members + stamp);
    write([&](Session& session) {
        session.measurements().insertPoint(project, "p1",
                                           R"({"_id":"p1","projectId":")" + project + "\"," + members +
                                               R"("name":"S1","depth":"","lastDate":"","links":[]})",
                                           0);
    });
    expectFailure({"subcategory", "remove", subCategory},
                  "sub-category \"Ground\" is still in use and stays: point locations: 1, groups: 1, data "
                  "manages: 1, alarms: 1");
    EXPECT_EQ(line({"subcategory", "remove", newSubCategory(project, "Wall")}), "");
    EXPECT_THAT(line({"subcategory", "list"}), ::testing::Not(HasSubstr("Wall")));
    expectFailure({"subcategory", "remove", "Grounds"}, "did you mean " + subCategory);
}

} // namespace
} // namespace monitorservice
