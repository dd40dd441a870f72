#include "AdminFixture.h"
#include "domain/Change.h"
#include "store/OpenStore.h"
#include "store/StoreContents.h"

#include <cstdlib>

namespace monitorservice {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

// What commands leave in the audit trail.
class CommandTrail : public test::AdminFixture
{
protected:
    std::vector<Change> entries() const
    {
        std::vector<Change> entries;
        const std::unique_ptr<Store> store = openStore(file);
        for (const std::string& entry : test::entriesOf(*store->read())) {
            entries.push_back(fromDocument<Change>(entry));
        }
        return entries;
    }

    // Each with the project that it is of.
    std::vector<std::string> actions() const
    {
        std::vector<std::string> actions;
        for (const Change& entry : entries()) {
            actions.push_back(entry.action + (entry.project.empty() ? "" : " in " + entry.project));
        }
        return actions;
    }

    std::vector<std::string> authors() const
    {
        std::vector<std::string> authors;
        for (const Change& entry : entries()) {
            authors.push_back(entry.author.name);
        }
        return authors;
    }

    // Runs a command where the environment is as `prepare` leaves it.
    void runWhere(void (*prepare)(), Arguments arguments) const
    {
        const Arguments prefix{"admin", "--data", file};
        arguments.insert(arguments.begin(), prefix.begin(), prefix.end());
        test::ServiceProcess process(arguments, prepare);
        EXPECT_EQ(process.readErrors(), "");
        EXPECT_EQ(process.wait(), 0);
    }
};

TEST_F(CommandTrail, TellsOfEveryCommandThatChanges)
{
    admin({"category", "add", "Settlement", "Strain"});
    admin({"category", "rename", "Strain", "Stress"});
    admin({"category", "remove", "Stress"});
    const std::string project = newProject();
    line({"project", "rename", project, "--name", "Slope"});
    const std::string subCategory = newSubCategory(project, "Ground");
    line({"subcategory", "change", subCategory, "--unit", "mm"});
    line({"subcategory", "remove", subCategory});
    const std::string token = newTokenId("Ada");
    const std::string reader = line({"grant", "--token", token, "--project", project, "--role", "reader"});
    line({"grant", "--token", token, "--project", project, "--role", "editor"});
    line({"grant", "--token", token, "--role", "administrator"});
    line({"grant", "revoke", reader});
    line({"token", "revoke", token});
    line({"project", "remove", project});
    const std::string in = " in " + project;
    EXPECT_THAT(actions(),
                ElementsAre("category.created", "category.created", "category.renamed", "category.removed",
                            "project.created" + in, "project.renamed" + in, "subCategory.created" + in,
                            "subCategory.changed" + in, "subCategory.removed" + in, "token.created",
                            "grant.created" + in, "grant.changed" + in, "grant.created", "grant.revoked" + in,
                            "token.revoked", "project.removed" + in));
    EXPECT_THAT(authors(), Each(EndsWith(" (command line)")));
}

TEST_F(CommandTrail, TellsNothingOfWhatIsRefusedOrThereAlready)
{
    admin({"category", "add", "Settlement"});
    admin({"category", "add", "Settlement"});
    admin({"category", "remove", "Strain"});
    admin({"project", "create", "--name", "Pit", "--time-zone", "Nowhere"});
    EXPECT_THAT(actions(), ElementsAre("category.created"));
}

TEST_F(CommandTrail, NamesWhoIsLoggedIn)
{
    runWhere([] { setenv("USER", "ada", 1); }, {"category", "add", "A"});
    runWhere(
        [] {
            unsetenv("USER");
            setenv("LOGNAME", "bea", 1);
        },
        {"category", "add", "B"});
    runWhere(
        [] {
            setenv("USER", "\xff", 1);
            unsetenv("LOGNAME");
            unsetenv("USERNAME");
        },
        {"category", "add", "C"});
    EXPECT_THAT(authors(), ElementsAre("ada (command line)", "bea (command line)", "unknown (command line)"));
}

TEST_F(CommandTrail, HoldsNoSecret)
{
    const std::string secret = line({"token", "create", "--owner", "Ada"});
    const std::unique_ptr<Store> store = openStore(file);
    EXPECT_THAT(test::entriesOf(*store->read()), ElementsAre(Not(HasSubstr(secret.substr(4)))));
}

} // namespace
} // namespace monitorservice
