#include "DisplayText.h"

#include <gtest/gtest.h>

TEST(DisplayText, WideCharactersTakeTwoCells)
{
    EXPECT_EQ(display::width(QStringLiteral("VH-1")), 4);
    EXPECT_EQ(display::width(QString::fromUtf8("边坡")), 4);
    EXPECT_EQ(display::width(QString::fromUtf8("ｱ")), 1); // half-width katakana
    EXPECT_EQ(display::width(QString::fromUtf8("Böschung")), 8);
    EXPECT_EQ(display::width(QString::fromUtf8("\U0001F600")), 2);
}

TEST(DisplayText, CombiningCharactersTakeNoCell)
{
    EXPECT_EQ(display::width(QString::fromUtf8("Bo\u0308schung")), 8);
    EXPECT_EQ(display::width(QString()), 0);
}

TEST(DisplayText, EscapesWhatSteersTheTerminal)
{
    EXPECT_EQ(display::escaped(QStringLiteral("a\033[2Jb")), QStringLiteral("a\\x1b[2Jb"));
    EXPECT_EQ(display::escaped(QStringLiteral("a\nb\tc\rd")), QStringLiteral("a\\nb\\tc\\rd"));
    EXPECT_EQ(display::escaped(QString(QChar(0x7F))), QStringLiteral("\\x7f"));
    EXPECT_EQ(display::escaped(QString(QChar(0x9B))), QStringLiteral("\\x9b")); // CSI in one character
    EXPECT_EQ(display::escaped(QString(QChar(0))), QStringLiteral("\\x00"));
    EXPECT_EQ(display::escaped(QString(QChar(0x2028))), QStringLiteral("\\u2028"));
}

TEST(DisplayText, EscapesWhatReordersTheLine)
{
    EXPECT_EQ(display::escaped(QString(QChar(0x202E)) + QStringLiteral("abc")), QStringLiteral("\\u202eabc"));
    EXPECT_EQ(display::escaped(QString(QChar(0x2066))), QStringLiteral("\\u2066"));
}

TEST(DisplayText, LeavesTextOfAnyScriptAlone)
{
    const QString text = QString::fromUtf8("Böschung 边坡 مراقبة склон \U0001F600 \\n \"quoted\"");
    EXPECT_EQ(display::escaped(text), text);
}

TEST(DisplayText, TruncatesToCellsAndShowsIt)
{
    EXPECT_EQ(display::truncated(QStringLiteral("abcdef"), 6), QStringLiteral("abcdef"));
    EXPECT_EQ(display::truncated(QStringLiteral("abcdef"), 5), QString::fromUtf8("abcd…"));
    EXPECT_EQ(display::truncated(QStringLiteral("abcdef"), 1), QString::fromUtf8("…"));
    EXPECT_EQ(display::truncated(QStringLiteral("abcdef"), 0), QString());
}

TEST(DisplayText, TruncationPartsNoCharacter)
{
    // A wide character that would stand half inside is left out whole.
    EXPECT_EQ(display::truncated(QString::fromUtf8("边坡监测"), 4), QString::fromUtf8("边…"));
    EXPECT_EQ(display::truncated(QString::fromUtf8("o\u0308abc"), 3), QString::fromUtf8("o\u0308a…"));
    EXPECT_EQ(display::truncated(QString::fromUtf8("\U0001F600\U0001F600"), 3),
              QString::fromUtf8("\U0001F600…"));
}

TEST(DisplayText, PadsByCells)
{
    EXPECT_EQ(display::padded(QString::fromUtf8("边"), 4), QString::fromUtf8("边  "));
    EXPECT_EQ(display::padded(QStringLiteral("abcde"), 3), QStringLiteral("abcde"));
}
