#include "Contract.h"

// Categories and sub-categories, which are the operator's: they are only read.

using CategoryContract = Contract;

TEST_F(CategoryContract, ListReplacesWhatWasThere)
{
    QStringList categories{"before"_q};
    ASSERT_TRUE(data.getMonitoringCategory(categories));
    EXPECT_THAT(categories, testing::Contains(category()));
    EXPECT_FALSE(categories.contains("before"_q));
    EXPECT_EQ(categories.removeDuplicates(), 0);
}

TEST_F(CategoryContract, EachCategoryHasItsOwnSubCategories)
{
    QStringList categories;
    ASSERT_TRUE(data.getMonitoringCategory(categories));
    for (const QString& each : qAsConst(categories)) {
        QList<RKMonitoringSubCategory> found{{}};
        ASSERT_TRUE(data.getMonitoringSubCategory(each, found)) << each.toStdString();
        for (const RKMonitoringSubCategory& subCategory : qAsConst(found)) {
            EXPECT_EQ(subCategory.category, each);
            EXPECT_FALSE(subCategory.id.isEmpty());
            EXPECT_FALSE(subCategory.name.isEmpty());
        }
    }
}

TEST_F(CategoryContract, SubCategoryIsFoundById)
{
    const QList<RKMonitoringSubCategory> listed = subCategories();
    data.clear();
    for (const RKMonitoringSubCategory& expected : listed) {
        RKMonitoringSubCategory found;
        ASSERT_TRUE(data.getSubCategoryById(expected.id, found)) << lastErrorText();
        EXPECT_EQ(found.id, expected.id);
        EXPECT_EQ(found.name, expected.name);
        EXPECT_EQ(found.category, category());
        EXPECT_EQ(found.alias, expected.alias);
    }
    const int before = requestCount();
    RKMonitoringSubCategory again;
    EXPECT_TRUE(data.getSubCategoryById(listed.first().id, again));
    EXPECT_EQ(again.name, listed.first().name);
    EXPECT_EQ(requestCount(), before);
}

TEST_F(CategoryContract, UnknownCategoryHasNoSubCategories)
{
    QList<RKMonitoringSubCategory> found{{}};
    EXPECT_TRUE(data.getMonitoringSubCategory(mine("no such category"_q), found));
    EXPECT_TRUE(found.isEmpty());
}

TEST_F(CategoryContract, UnknownSubCategoryIsAFailure)
{
    RKMonitoringSubCategory found;
    found.name = "before"_q;
    EXPECT_FALSE(data.getSubCategoryById("000000000000000000000000"_q, found));
    EXPECT_EQ(lastStatus(), 404);
    EXPECT_TRUE(found.name.isEmpty());
}
