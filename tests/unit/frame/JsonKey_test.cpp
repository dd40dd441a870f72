#include "frame/JsonKey.h"

#include <QJsonObject>

#include <gtest/gtest.h>

TEST(JsonKey, IsTheTextWithoutItsTerminator)
{
    constexpr auto key = rk::jsonKey("_id");
    static_assert(key.size() == 3, "known when compiled");
    EXPECT_EQ(key, QLatin1String("_id"));
}

TEST(JsonKey, FindsTheMemberOfThatName)
{
    const QJsonObject object{{QStringLiteral("count"), 7}, {QStringLiteral("counts"), 8}};
    EXPECT_EQ(object.value(rk::jsonKey("count")).toInt(), 7);
}
