#include "Suggestion.h"

#include <gtest/gtest.h>

TEST(Suggestion, FindsTheSlipOfTheKeyboard)
{
    const QStringList commands{QStringLiteral("monitoring"), QStringLiteral("category"),
                               QStringLiteral("subcategory"), QStringLiteral("can"), QStringLiteral("list")};
    EXPECT_EQ(closest(QStringLiteral("moniotring"), commands), QStringLiteral("monitoring"));
    EXPECT_EQ(closest(QStringLiteral("monitorings"), commands), QStringLiteral("monitoring"));
    EXPECT_EQ(closest(QStringLiteral("lits"), commands), QStringLiteral("list"));
    EXPECT_EQ(closest(QStringLiteral("cat"), commands), QStringLiteral("category"));
    EXPECT_EQ(closest(QStringLiteral("xyz"), commands), QString());
    EXPECT_EQ(closest(QString(), commands), QString());
    EXPECT_EQ(closest(QStringLiteral("list"), {}), QString());
}
