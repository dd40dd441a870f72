#include <QJsonDocument>
#include <RKPub.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

QStringList textsOfJson(const char* array)
{
    const QJsonDocument document = QJsonDocument::fromJson(array);
    EXPECT_TRUE(document.isArray()) << array;
    return RKPub::getStrListFromVarList(document.array().toVariantList());
}

QString textOf(const QVariant& value)
{
    const QStringList texts = RKPub::getStrListFromVarList({value});
    EXPECT_EQ(texts.size(), 1);
    return texts.value(0);
}

} // namespace

TEST(StringList, NothingGivesNothing)
{
    EXPECT_TRUE(RKPub::getStrListFromVarList({}).isEmpty());
}

TEST(StringList, TextsStayAsTheyAre)
{
    EXPECT_EQ(textsOfJson(R"(["settlement", "", " blank ", "沉降 \"a\"\n", "1e6"])"),
              (QStringList{QStringLiteral("settlement"), QString(), QStringLiteral(" blank "),
                           QStringLiteral("沉降 \"a\"\n"), QStringLiteral("1e6")}));
}

TEST(StringList, NumbersAndBooleansAsTheirText)
{
    EXPECT_EQ(textsOfJson("[1, -2, 1.0, 1000000, 0.1, -12.5, true, false]"),
              (QStringList{QStringLiteral("1"), QStringLiteral("-2"), QStringLiteral("1"),
                           QStringLiteral("1000000"), QStringLiteral("0.1"), QStringLiteral("-12.5"),
                           QStringLiteral("true"), QStringLiteral("false")}));
}

TEST(StringList, NullListsAndMapsAsEmptyTextInTheirPlace)
{
    EXPECT_EQ(
        textsOfJson(R"(["a", null, ["b"], [], {"c": 1}, "d"])"),
        (QStringList{QStringLiteral("a"), QString(), QString(), QString(), QString(), QStringLiteral("d")}));
    EXPECT_TRUE(textOf(QVariant()).isEmpty());
    EXPECT_TRUE(textOf(QVariant(QStringList{QStringLiteral("alone")})).isEmpty());
    EXPECT_TRUE(textOf(QVariant(QVariantHash{{QStringLiteral("k"), 1}})).isEmpty());
}

TEST(StringList, IntegersInFull)
{
    EXPECT_EQ(textOf(std::numeric_limits<qint64>::min()), QStringLiteral("-9223372036854775808"));
    EXPECT_EQ(textOf(std::numeric_limits<quint64>::max()), QStringLiteral("18446744073709551615"));
    EXPECT_EQ(textOf(9007199254740993LL), QStringLiteral("9007199254740993"));
}

TEST(StringList, DoublesWithoutExponentWithinTheUsualRange)
{
    EXPECT_EQ(textOf(1e6), QStringLiteral("1000000"));
    EXPECT_EQ(textOf(1e20), QStringLiteral("100000000000000000000"));
    EXPECT_EQ(textOf(1e21), QStringLiteral("1e+21"));
    EXPECT_EQ(textOf(1e-6), QStringLiteral("0.000001"));
    EXPECT_EQ(textOf(5e-7), QStringLiteral("5e-07"));
    EXPECT_EQ(textOf(0.0), QStringLiteral("0"));
    EXPECT_EQ(textOf(-0.0), QStringLiteral("0"));
    EXPECT_EQ(textOf(1e6F), QStringLiteral("1000000"));
    EXPECT_EQ(textOf(0.1 + 0.2), QStringLiteral("0.30000000000000004"));
}

TEST(StringList, DoublesReadBackAsTheSameNumber)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> significand(-1, 1);
    std::uniform_int_distribution<int> exponent(-1000, 1000);
    for (int i = 0; i < 20000; ++i) {
        const double number = std::ldexp(significand(random), i % 2 == 0 ? exponent(random) : i % 40);
        bool isNumber = false;
        EXPECT_EQ(textOf(number).toDouble(&isNumber), number);
        EXPECT_TRUE(isNumber);
    }
}
