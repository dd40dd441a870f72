#include "administration/CategoryAdministration.h"

#include "AdministrationFixture.h"

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class CategoriesAdministered : public test::AdministrationFixture
{
protected:
    CategoryAdministration administration{*session, "Ada"};
};

TEST_F(CategoriesAdministered, AreToldOfAsOfTheWholeService)
{
    EXPECT_THAT(administration.add("Böschung \"Süd\"").warnings, IsEmpty());
    EXPECT_EQ(administration.rename("Böschung \"Süd\"", "Hang").thing, "Hang");
    EXPECT_EQ(administration.rename("Hang", "Hang").thing, "Hang");
    EXPECT_EQ(administration.remove("Hang"), "Hang");
    EXPECT_THAT(session->categories().list(), ElementsAre("Settlement"));
    std::vector<std::string> all;
    for (const Change& entry : entries()) {
        all.push_back(told(entry));
        EXPECT_EQ(entry.author.name, "Ada");
        EXPECT_EQ(entry.subject, entry.name);
    }
    EXPECT_THAT(all,
                ElementsAre(R"(category.created of "", "": null -> {"name":"Böschung \"Süd\""})",
                            R"(category.renamed of "", "": {"name":"Böschung \"Süd\""} -> {"name":"Hang"})",
                            R"(category.removed of "", "": {"name":"Hang"} -> null)"));
}

TEST_F(CategoriesAdministered, WhatIsRefusedIsNotToldOf)
{
    EXPECT_EQ(refusalOf([&] { administration.add("\t"); }), "bad category: has a control character");
    EXPECT_EQ(refusalOf([&] { administration.add("Settlement"); }),
              "contradiction category: there is a category \"Settlement\" already");
    EXPECT_EQ(refusalOf([&] { administration.rename("Settlement", ""); }), "bad category: is empty");
    EXPECT_EQ(refusalOf([&] { administration.rename("Strain", "Stress"); }),
              "unknown category: there is no category \"Strain\"");
    EXPECT_EQ(refusalOf([&] { administration.remove("Strain"); }),
              "unknown category: there is no category \"Strain\"");
    session->documents(DocumentKind::SubCategory)
        .insert("p1", "s1",
                R"({"_id":"s1","projectId":"p1","name":"Ground","category":"Settlement","alias":""})");
    EXPECT_EQ(refusalOf([&] { administration.remove("Settlement"); }),
              "in use category: category \"Settlement\" is still in use and stays: "
              "sub-categories: 1 in project \"Pit\"");
    EXPECT_THAT(entries(), IsEmpty());
    session->categories().add("Strain");
    EXPECT_EQ(refusalOf([&] { administration.rename("Strain", "Settlement"); }),
              "contradiction category: there is a category \"Settlement\" already");
}

TEST_F(CategoriesAdministered, ThatDifferInCaseOnlyAreWarnedOf)
{
    EXPECT_THAT(administration.add("SETTLEMENT").warnings,
                ElementsAre("there is a category \"Settlement\" too"));
    administration.add("Strain");
    EXPECT_THAT(administration.rename("Strain", "settlement").warnings, SizeIs(2));
}

} // namespace
} // namespace monitorservice
