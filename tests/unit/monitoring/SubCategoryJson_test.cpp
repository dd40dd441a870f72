#include "monitoring/SubCategoryJson.h"

#include "../../support/Json.h"
#include "../../support/Text.h"

#include <gtest/gtest.h>

TEST(SubCategoryJson, ReadsItsFourMembers)
{
    const auto object = jsonObject(R"({"_id":"s1","name":"Soil moisture","category":"slope","alias":"SM"})");
    const RKMonitoringSubCategory subCategory = rk::subCategoryFromJson(object);
    EXPECT_EQ(subCategory.id, "s1"_q);
    EXPECT_EQ(subCategory.name, "Soil moisture"_q);
    EXPECT_EQ(subCategory.category, "slope"_q);
    EXPECT_EQ(subCategory.alias, "SM"_q);
}

TEST(SubCategoryJson, WhatIsMissingOrNoTextIsEmpty)
{
    const RKMonitoringSubCategory subCategory =
        rk::subCategoryFromJson(jsonObject(R"({"_id":7,"alias":null})"));
    EXPECT_TRUE(subCategory.id.isEmpty() && subCategory.name.isEmpty());
    EXPECT_TRUE(subCategory.category.isEmpty() && subCategory.alias.isEmpty());
}
