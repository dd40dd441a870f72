#include "monitoring/SubCategoryJson.h"

#include "../../support/Text.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

TEST(SubCategoryJson, ReadsItsFourMembers)
{
    const auto object =
        QJsonDocument::fromJson(R"({"_id":"s1","name":"Soil moisture","category":"slope","alias":"SM"})")
            .object();
    const RKMonitoringSubCategory subCategory = rk::subCategoryFromJson(object);
    EXPECT_EQ(subCategory.id, "s1"_q);
    EXPECT_EQ(subCategory.name, "Soil moisture"_q);
    EXPECT_EQ(subCategory.category, "slope"_q);
    EXPECT_EQ(subCategory.alias, "SM"_q);
}

TEST(SubCategoryJson, WhatIsMissingOrNoTextIsEmpty)
{
    const RKMonitoringSubCategory subCategory =
        rk::subCategoryFromJson(QJsonDocument::fromJson(R"({"_id":7,"alias":null})").object());
    EXPECT_TRUE(subCategory.id.isEmpty() && subCategory.name.isEmpty());
    EXPECT_TRUE(subCategory.category.isEmpty() && subCategory.alias.isEmpty());
}
