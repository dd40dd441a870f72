#include "Table.h"

#include "DisplayText.h"

#include <gtest/gtest.h>

namespace {

const QStringList titles{QStringLiteral("ID"), QStringLiteral("NAME"), QStringLiteral("CATEGORY")};
const QVector<table::Heading> headings{{titles[0], true, 0}, {titles[1], false, 0}, {titles[2], false, 0}};

QStringList linesOf(const QString& text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    lines.removeLast(); // after the last line end
    return lines;
}

} // namespace

TEST(Table, AlignsColumnsByCells)
{
    const QVector<QStringList> rows{{QStringLiteral("1"), QString::fromUtf8("边坡"), QStringLiteral("Slope")},
                                    {QStringLiteral("22"), QStringLiteral("abcdef"), QStringLiteral("Pit")}};
    const QStringList lines = linesOf(table::listLines(headings, rows, {}));
    EXPECT_EQ(lines,
              (QStringList{QStringLiteral("ID  NAME    CATEGORY"), QString::fromUtf8("1   边坡    Slope"),
                           QStringLiteral("22  abcdef  Pit")}));
}

TEST(Table, NoRowsStillShowTitles)
{
    EXPECT_EQ(table::listLines(headings, {}, {}), QStringLiteral("ID  NAME  CATEGORY\n"));
}

TEST(Table, CutsTheWidestColumnToFit)
{
    const QVector<QStringList> rows{
        {QStringLiteral("0123456789"), QString(30, QLatin1Char('n')), QString(12, QLatin1Char('c'))}};
    const QStringList lines = linesOf(table::listLines(headings, rows, {40, false}));
    EXPECT_EQ(display::width(lines[1]), 40);
    EXPECT_EQ(lines[1], QStringLiteral("0123456789  ") + QString(13, QLatin1Char('n')) +
                            QString::fromUtf8("…  ") + QString(12, QLatin1Char('c')));
}

TEST(Table, LeavesColumnsOutBeforeItCutsTexts)
{
    QVector<table::Heading> some = headings;
    some[1].dispensability = 1;
    some[2].dispensability = 2;
    const QVector<QStringList> rows{
        {QStringLiteral("0123456789"), QString(30, QLatin1Char('n')), QString(12, QLatin1Char('c'))}};
    const auto titlesIn = [&](int width) {
        return linesOf(table::listLines(some, rows, {width, false}))[0].simplified();
    };
    EXPECT_EQ(titlesIn(56), QStringLiteral("ID NAME CATEGORY"));
    EXPECT_EQ(titlesIn(55), QStringLiteral("ID NAME"));
    EXPECT_EQ(titlesIn(41), QStringLiteral("ID"));
    some[2].dispensability = 0;
    EXPECT_EQ(titlesIn(20), QStringLiteral("ID CATEGORY")); // what is left is cut
}

TEST(Table, NeverCutsFixedColumns)
{
    const QString identifier(24, QLatin1Char('a'));
    const QVector<QStringList> rows{{identifier, QString(30, QLatin1Char('n')), QStringLiteral("Slope")}};
    const QStringList lines = linesOf(table::listLines(headings, rows, {20, false}));
    EXPECT_TRUE(lines[1].startsWith(identifier));
}

TEST(Table, CutsNothingWithoutAWidth)
{
    const QString name(500, QLatin1Char('n'));
    EXPECT_TRUE(table::listLines(headings, {{QStringLiteral("1"), name, QString()}}, {}).contains(name));
}

TEST(Table, EscapesNames)
{
    const QVector<QStringList> rows{{QStringLiteral("1"), QStringLiteral("a\033[31mb\nc"), QString()}};
    const QString text = table::listLines(headings, rows, {});
    EXPECT_EQ(linesOf(text)[1], QStringLiteral("1   a\\x1b[31mb\\nc"));
}

TEST(Table, TitlesAreBoldWhenColoured)
{
    const QStringList lines = linesOf(table::listLines(headings, {}, {0, true}));
    EXPECT_EQ(lines[0], QStringLiteral("\033[1mID  NAME  CATEGORY\033[0m"));
}

TEST(Table, RecordShowsOneMemberPerLine)
{
    const QString text =
        table::recordLines(titles, {QStringLiteral("1"), QString(), QStringLiteral("Slope")}, {10, false});
    EXPECT_EQ(text, QStringLiteral("ID        1\nNAME\nCATEGORY  Slope\n"));
}
