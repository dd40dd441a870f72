#include "../../support/LibraryTest.h"

namespace {

class CategoryOperations : public LibraryTest
{
protected:
    QList<RKMonitoringSubCategory> fetch(const QString& category, const QByteArray& answer)
    {
        QList<RKMonitoringSubCategory> subCategories;
        server.answerJson(200, answer);
        EXPECT_TRUE(data.getMonitoringSubCategory(category, subCategories));
        return subCategories;
    }
};

TEST_F(CategoryOperations, CategoriesReplaceTheCallersList)
{
    QStringList categories{"old"_q};
    server.answerJson(200, R"(["pit","slope",7,true,null])");
    EXPECT_TRUE(data.getMonitoringCategory(categories));
    EXPECT_EQ(lastMethod(), "GET");
    EXPECT_EQ(lastPath(), "categories"_q);
    EXPECT_TRUE(lastQuery().isEmpty());
    EXPECT_EQ(categories, (QStringList{"pit"_q, "slope"_q, "7"_q, "true"_q, ""_q}));
}

TEST_F(CategoryOperations, NoCategoriesIsAFailureEvenWhenTheRequestSucceeded)
{
    QStringList categories{"old"_q};
    server.answerJson(200, "[]");
    EXPECT_FALSE(data.getMonitoringCategory(categories));
    EXPECT_TRUE(categories.isEmpty());
}

TEST_F(CategoryOperations, FailedCategoriesAreEmptyAndFalse)
{
    QStringList categories{"old"_q};
    server.answerJson(500, R"({"message":"no","status":500})");
    EXPECT_FALSE(data.getMonitoringCategory(categories));
    EXPECT_TRUE(categories.isEmpty());
}

TEST_F(CategoryOperations, SubCategoriesAreThoseOfExactlyTheCategory)
{
    QList<RKMonitoringSubCategory> subCategories{RKMonitoringSubCategory()};
    server.answerJson(200, R"([{"_id":"s2","name":"Rain","category":"slope","alias":"R"},{"_id":"s1"}])");
    EXPECT_TRUE(data.getMonitoringSubCategory("slope"_q, subCategories));
    EXPECT_EQ(lastPath(), "projects/p7/subCategories"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"category":"slope"})"_q}}));
    ASSERT_EQ(subCategories.size(), 2) << "the caller's list is cleared first";
    EXPECT_EQ(subCategories.at(0).alias, "R"_q);
    EXPECT_EQ(subCategories.at(1).id, "s1"_q);
}

TEST_F(CategoryOperations, AnEmptyCategoryIsAskedForAsSuch)
{
    EXPECT_EQ(fetch(QString(), R"([{"_id":"s1"}])").size(), 1);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"category":""})"_q}}));
}

TEST_F(CategoryOperations, SubCategoriesAreAlwaysAskedFor)
{
    fetch("slope"_q, "[]");
    fetch("slope"_q, "[]");
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(CategoryOperations, FailedSubCategoriesAreEmptyAndCacheNothing)
{
    QList<RKMonitoringSubCategory> subCategories{RKMonitoringSubCategory()};
    server.answerJson(403, R"({"message":"no","status":403})");
    EXPECT_FALSE(data.getMonitoringSubCategory("slope"_q, subCategories));
    EXPECT_TRUE(subCategories.isEmpty());
}

TEST_F(CategoryOperations, ListedSubCategoriesAreFoundByIdWithoutARequest)
{
    fetch("slope"_q,
          R"([{"_id":"s1","name":"Rain","category":"slope","alias":"R"},{"_id":"s2","name":"Air"}])");
    RKMonitoringSubCategory subCategory;
    EXPECT_TRUE(data.getSubCategoryById("s1"_q, subCategory));
    EXPECT_EQ(subCategory.name, "Rain"_q);
    EXPECT_EQ(subCategory.category, "slope"_q);
    EXPECT_EQ(subCategory.alias, "R"_q);
    EXPECT_TRUE(data.getSubCategoryById("s2"_q, subCategory));
    EXPECT_EQ(subCategory.name, "Air"_q);
    EXPECT_TRUE(subCategory.alias.isEmpty());
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(CategoryOperations, ALaterListOverwritesACachedSubCategory)
{
    fetch("slope"_q, R"([{"_id":"s1","name":"Rain","alias":"R"}])");
    fetch("slope"_q, R"([{"_id":"s1","name":"Rainfall"}])");
    RKMonitoringSubCategory subCategory;
    EXPECT_TRUE(data.getSubCategoryById("s1"_q, subCategory));
    EXPECT_EQ(subCategory.name, "Rainfall"_q);
    EXPECT_TRUE(subCategory.alias.isEmpty());
}

TEST_F(CategoryOperations, SubCategoryByIdAsksOnceAndThenAnswersFromTheCache)
{
    RKMonitoringSubCategory subCategory;
    server.answerJson(200, R"({"_id":"s1","name":"Rain"})");
    EXPECT_TRUE(data.getSubCategoryById("s1"_q, subCategory));
    EXPECT_EQ(lastMethod(), "GET");
    EXPECT_EQ(lastPath(), "subCategories/s1"_q);
    EXPECT_TRUE(data.getSubCategoryById("s1"_q, subCategory));
    EXPECT_EQ(subCategory.name, "Rain"_q);
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(CategoryOperations, TheIdIsComparedCaseSensitively)
{
    fetch("slope"_q, R"([{"_id":"s1","name":"Rain"}])");
    RKMonitoringSubCategory subCategory;
    server.answerJson(404, "{}");
    EXPECT_FALSE(data.getSubCategoryById("S1"_q, subCategory));
}

TEST_F(CategoryOperations, ASubCategoryIsCachedUnderTheIdOfTheReply)
{
    RKMonitoringSubCategory subCategory;
    server.answerJson(200, R"({"_id":"s9","name":"Rain"})");
    EXPECT_TRUE(data.getSubCategoryById("asked"_q, subCategory));
    EXPECT_TRUE(data.getSubCategoryById("s9"_q, subCategory));
    EXPECT_EQ(server.requestCount(), 1) << "known by its own identifier";
    server.answerJson(200, R"({"_id":"s9","name":"Rain"})");
    EXPECT_TRUE(data.getSubCategoryById("asked"_q, subCategory));
    EXPECT_EQ(server.requestCount(), 2) << "but not by the one asked for";
}

TEST_F(CategoryOperations, AFailedSubCategoryEmptiesTheRecordAndCachesNothing)
{
    RKMonitoringSubCategory subCategory;
    subCategory.id = subCategory.name = subCategory.category = subCategory.alias = "x"_q;
    server.answerJson(404, R"({"message":"no","status":404})");
    EXPECT_FALSE(data.getSubCategoryById("s1"_q, subCategory));
    EXPECT_TRUE(subCategory.id.isEmpty() && subCategory.name.isEmpty());
    EXPECT_TRUE(subCategory.category.isEmpty() && subCategory.alias.isEmpty());
    server.answerJson(404, "{}");
    EXPECT_FALSE(data.getSubCategoryById("s1"_q, subCategory));
    EXPECT_EQ(server.requestCount(), 2);
}

} // namespace
