#include "administration/SubCategoryAdministration.h"

#include "AdministrationFixture.h"

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class SubCategoriesAdministered : public test::AdministrationFixture
{
protected:
    static SubCategoryDescription called(const std::string& name)
    {
        SubCategoryDescription description;
        description.name = name;
        return description;
    }

    SubCategory newSubCategory(const std::string& name)
    {
        return administration.create("p1", "Settlement", called(name)).thing;
    }

    SubCategoryAdministration administration{*session, "Ada"};
};

TEST_F(SubCategoriesAdministered, AreToldOfAsOfTheirProjectAndCategory)
{
    const SubCategory made = newSubCategory("Ground");
    SubCategoryDescription description;
    description.unit = "mm";
    description.decimals = std::optional(2);
    const SubCategory changed = administration.change(made.id, description).thing;
    EXPECT_EQ(changed.decimals, 2);
    EXPECT_EQ(changed.name, "Ground");
    administration.change(made.id, description);
    EXPECT_EQ(administration.remove(made.id).unit, "mm");
    std::vector<std::string> all;
    for (const Change& entry : entries()) {
        all.push_back(told(entry));
        EXPECT_EQ(entry.subject, made.id);
        EXPECT_EQ(entry.subCategory, made.id);
        EXPECT_EQ(entry.name, "Ground");
        EXPECT_EQ(entry.author.name, "Ada");
    }
    const std::string before = toDocument(made);
    const std::string after = toDocument(changed);
    EXPECT_THAT(all, ElementsAre("subCategory.created of \"p1\", \"Settlement\": null -> " + before,
                                 "subCategory.changed of \"p1\", \"Settlement\": " + before + " -> " + after,
                                 "subCategory.removed of \"p1\", \"Settlement\": " + after + " -> null"));
}

TEST_F(SubCategoriesAdministered, LoseTheirDecimalsWhenThatIsSaid)
{
    const SubCategory made = newSubCategory("Ground");
    SubCategoryDescription description;
    description.decimals = std::optional(0);
    EXPECT_EQ(administration.change(made.id, description).thing.decimals, 0);
    EXPECT_EQ(administration.change(made.id, called("Ground level")).thing.decimals, 0);
    description.decimals = std::optional<std::int32_t>();
    EXPECT_EQ(administration.change(made.id, description).thing.decimals, std::nullopt);
}

TEST_F(SubCategoriesAdministered, WhatIsRefusedIsNotToldOf)
{
    const auto refusedWith = [this](const SubCategoryDescription& description) {
        return refusalOf([&] { administration.create("p1", "Settlement", description); });
    };
    EXPECT_EQ(refusedWith({}), "bad name: is empty");
    SubCategoryDescription description = called("Ground");
    description.alias = "\n";
    EXPECT_EQ(refusedWith(description), "bad alias: has a control character");
    description.alias = "";
    description.unit = " ";
    EXPECT_EQ(refusedWith(description), "bad unit: is empty");
    description.unit = "";
    for (const std::int32_t decimals : {-1, 16}) {
        description.decimals = std::optional(decimals);
        EXPECT_EQ(refusedWith(description), "bad decimals: is not a whole number from 0 to 15");
    }
    EXPECT_EQ(refusalOf([&] { administration.create("p9", "Settlement", called("Ground")); }),
              "unknown project: there is no project \"p9\"");
    EXPECT_EQ(refusalOf([&] { administration.create("p1", "Strain", called("Ground")); }),
              "unknown category: there is no category \"Strain\"");
    EXPECT_EQ(refusalOf([&] { administration.change("s9", called("Ground")); }),
              "unknown sub-category: there is no sub-category \"s9\"");
    EXPECT_EQ(refusalOf([&] { administration.remove("s9"); }),
              "unknown sub-category: there is no sub-category \"s9\"");
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(SubCategoriesAdministered, NameOfAnotherContradicts)
{
    const SubCategory ground = newSubCategory("Ground");
    const SubCategory wall = newSubCategory("Wall");
    const std::string refusal = "contradiction sub-category: category \"Settlement\" of the project has a "
                                "sub-category \"Ground\" already";
    EXPECT_EQ(refusalOf([this] { newSubCategory("Ground"); }), refusal);
    EXPECT_EQ(refusalOf([&] { administration.change(wall.id, called("Ground")); }), refusal);
    EXPECT_EQ(administration.change(ground.id, called("Ground")).thing.name, "Ground");
    EXPECT_THAT(entries(), SizeIs(2));
    session->projects().insert({"p2", "Slope", "UTC", 1});
    EXPECT_NO_THROW(administration.create("p2", "Settlement", called("Ground")));
}

TEST_F(SubCategoriesAdministered, WhatIsEasilyMistakenIsWarnedOf)
{
    SubCategoryDescription description = called("Ground");
    description.alias = "G";
    administration.create("p1", "Settlement", description);
    description.name = "GROUND";
    const Administered<SubCategory> like = administration.create("p1", "Settlement", description);
    EXPECT_THAT(like.warnings,
                ElementsAre("sub-category \"Ground\" of category \"Settlement\" has the alias \"G\" too",
                            "category \"Settlement\" of the project has a sub-category \"Ground\" too"));
    SubCategoryDescription unit;
    unit.unit = "mm";
    EXPECT_THAT(administration.change(like.thing.id, unit).warnings, IsEmpty());
    EXPECT_THAT(administration.change(like.thing.id, description).warnings, SizeIs(2));
}

} // namespace
} // namespace monitorservice
