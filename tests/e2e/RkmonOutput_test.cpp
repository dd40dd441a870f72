#include "RkmonTest.h"
#include "Text.h"

#include <QFileInfo>

#include <gmock/gmock.h>

// How rkmon's results look: tables for people, JSON and CSV for programs, on a terminal and off it.

namespace {

class RkmonOutput : public RkmonTest
{
protected:
    static QStringList linesOf(const QString& text)
    {
        return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
};

} // namespace

TEST_F(RkmonOutput, TableAlignsNamesOfAnyScript)
{
    const QString first = created("边坡"_q);
    const QString second = created("VH"_q, "Pit"_q, {"--alarm-to"_q, "ana,ben"_q});
    const Result result = rkmon.run({"monitoring"_q, "list"_q});
    EXPECT_EQ(result.messages, QString());
    const QStringList lines = linesOf(result.output);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].startsWith("ID                        NAME  CATEGORY  MODEL  ALARM TO  UPDATED"_q))
        << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith(first + "  边坡  Slope                      20"_q))
        << lines[1].toStdString();
    EXPECT_TRUE(lines[2].startsWith(second + "  VH    Pit              ana, ben  20"_q))
        << lines[2].toStdString();
    const bool isOfTheProject = lines[1].endsWith(" -08:00"_q) || lines[1].endsWith(" -07:00"_q);
    EXPECT_TRUE(isOfTheProject) << lines[1].toStdString();
}

TEST_F(RkmonOutput, TimesAreOfTheProjectWithTheirOffset)
{
    const QString id = created("VH"_q);
    rkmon.setVariable("TZ"_q, "Asia/Kolkata"_q);
    const QString shown = rkmon.run({"monitoring"_q, "show"_q, id}).output;
    EXPECT_TRUE(shown.contains(" -08:00\n"_q) || shown.contains(" -07:00\n"_q)) << shown.toStdString();
    // Without a project there are only the machine's.
    rkmon.removeVariable("RKMON_PROJECT"_q);
    EXPECT_TRUE(rkmon.run({"monitoring"_q, "show"_q, id}).output.contains(" +05:30\n"_q));
    // Programs get the instant as it is stored.
    EXPECT_TRUE(rkmon.run({"monitoring"_q, "show"_q, id, "--json"_q})
                    .object()
                    .value("createdAt"_q)
                    .toString()
                    .endsWith("Z"_q));
}

TEST_F(RkmonOutput, RecordShowsEveryMember)
{
    const QString id = created("VH"_q);
    const QStringList lines = linesOf(rkmon.run({"monitoring"_q, "show"_q, id}).output);
    ASSERT_EQ(lines.size(), 9);
    EXPECT_EQ(lines[0], "ID          "_q + id);
    EXPECT_EQ(lines[1], "NAME        VH"_q);
    EXPECT_EQ(lines[3], "MODEL"_q);
    EXPECT_EQ(lines[6], "CREATED BY  Ana"_q);
}

TEST_F(RkmonOutput, CsvIsQuotedByTheBook)
{
    const QString id = created("a,\"b\""_q, "Slope"_q, {"--alarm-to"_q, "ana,ben"_q});
    const Result result = rkmon.run({"monitoring"_q, "list"_q, "--csv"_q});
    const QStringList records = result.output.split("\r\n"_q);
    ASSERT_EQ(records.size(), 3);
    EXPECT_EQ(records[0], "id,name,category,modelId,alarmTo,createdAt,createdBy,updatedAt,updatedBy"_q);
    EXPECT_TRUE(records[1].startsWith(id + ",\"a,\"\"b\"\"\",Slope,,ana;ben,20"_q))
        << records[1].toStdString();
    EXPECT_EQ(records[2], QString());
}

TEST_F(RkmonOutput, ColumnsAreChosenByTheirKeys)
{
    const QString id = created("VH"_q, "Slope"_q, {"--alarm-to"_q, "ana"_q});
    const auto listed = [&](const QStringList& more) {
        return rkmon.run(QStringList{"monitoring"_q, "list"_q, "--columns"_q, "createdBy,name"_q} + more)
            .output;
    };
    EXPECT_EQ(listed({}), "CREATED BY  NAME\nAna         VH\n"_q);
    EXPECT_EQ(listed({"--csv"_q}), "createdBy,name\r\nAna,VH\r\n"_q);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "list"_q, "--columns"_q, "id"_q, "--json"_q}).array(),
              (QJsonArray{QJsonObject{{"id"_q, id}}}));
    const Result unknown = rkmon.run({"monitoring"_q, "list"_q, "--columns"_q, "name,nam"_q});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_EQ(unknown.output, QString());
    EXPECT_THAT(unknown.messages.toStdString(),
                testing::StartsWith("rkmon: --columns: there is no column \"nam\"; known are id, name, "));
    const Result record = rkmon.run({"monitoring"_q, "show"_q, id, "--columns"_q, "id"_q});
    EXPECT_EQ(record.code, 0);
    EXPECT_TRUE(record.messages.contains("warning: --columns chooses columns of lists"_q));
}

TEST_F(RkmonOutput, EmptyListsAreEmptyInEveryForm)
{
    EXPECT_EQ(rkmon.run({"monitoring"_q, "list"_q, "--json"_q}).output, "[\n]\n"_q);
    EXPECT_EQ(linesOf(rkmon.run({"monitoring"_q, "list"_q}).output).size(), 1);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "ids"_q, "--csv"_q}).output, "id,name\r\n"_q);
}

TEST_F(RkmonOutput, NothingIsCutOrColouredOffATerminal)
{
    const QString name(300, QLatin1Char('n'));
    created(name);
    rkmon.setVariable("COLUMNS"_q, "40"_q);
    const Result result = rkmon.run({"monitoring"_q, "list"_q});
    EXPECT_TRUE(result.output.contains(name));
    EXPECT_FALSE(result.output.contains(QChar(0x1B)));
}

TEST_F(RkmonOutput, NamesCannotSteerTheTerminal)
{
    const Result made =
        rkmon.run({"monitoring"_q, "create"_q, "--name"_q, "a\033[2J\nb"_q, "--category"_q, "Slope"_q});
    ASSERT_EQ(made.code, 0) << made.messages.toStdString();
    const Result result = rkmon.run({"monitoring"_q, "list"_q});
    EXPECT_TRUE(result.output.contains("a\\x1b[2J\\nb"_q)) << result.output.toStdString();
    EXPECT_FALSE(result.output.contains(QChar(0x1B)));
    EXPECT_EQ(rkmon.run({"monitoring"_q, "list"_q, "--json"_q})
                  .array()
                  .first()
                  .toObject()
                  .value("name"_q)
                  .toString(),
              "a\033[2J\nb"_q);
}

TEST_F(RkmonOutput, HelpShowsExamplesAtEachLevel)
{
    for (const QStringList& words :
         {QStringList{}, QStringList{"monitoring"_q}, QStringList{"monitoring"_q, "update"_q},
          QStringList{"category"_q}, QStringList{"subcategory"_q, "list"_q},
          QStringList{"can"_q, "edit"_q}}) {
        const Result result = rkmon.run(words + QStringList{"--help"_q});
        EXPECT_EQ(result.code, 0);
        EXPECT_TRUE(result.output.contains("Usage: rkmon"_q)) << result.output.toStdString();
        EXPECT_TRUE(result.output.contains("Examples:\n  rkmon "_q)) << result.output.toStdString();
        EXPECT_EQ(result.messages, QString());
    }
    EXPECT_THAT(rkmon.run({"--version"_q}).output.toStdString(), testing::MatchesRegex("rkmon [0-9.]+\n"));
}

TEST_F(RkmonOutput, LanguageOfTheSystemDoesNotMatter)
{
    const QString id = created("Böschung 边坡 😀"_q);
    rkmon.setVariable("LC_ALL"_q, "C"_q);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "name"_q, id}).output, "Böschung 边坡 😀\n"_q);
    rkmon.setVariable("LC_ALL"_q, "C.UTF-8"_q);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "name"_q, id}).output, "Böschung 边坡 😀\n"_q);
}

#ifdef Q_OS_UNIX
TEST_F(RkmonOutput, TerminalTablesAreCutToItsWidthAndBold)
{
    created(QString(100, QLatin1Char('n')));
    const Result result = rkmon.runOnTerminal({"monitoring"_q, "list"_q}, 100);
    EXPECT_EQ(result.code, 0);
    const QStringList lines = linesOf(result.output);
    ASSERT_EQ(lines.size(), 2) << result.output.toStdString();
    EXPECT_TRUE(lines[0].startsWith("\033[1mID"_q)) << lines[0].toStdString();
    EXPECT_EQ(QString(lines[0]).remove("\033[1m"_q).remove("\033[0m"_q).size(), 100);
    EXPECT_LE(lines[1].size(), 100);
    EXPECT_TRUE(lines[1].contains(QChar(0x2026)));
}

TEST_F(RkmonOutput, TerminalTablesLeaveColumnsOutBeforeTheyCut)
{
    created("VH"_q, "Slope"_q, {"--model"_q, "m1"_q, "--alarm-to"_q, "ana"_q});
    const auto titles = [&](int columns) {
        const Result result = rkmon.runOnTerminal({"monitoring"_q, "list"_q}, columns);
        return linesOf(result.output).value(0).remove("\033[1m"_q).remove("\033[0m"_q).simplified();
    };
    EXPECT_EQ(titles(90), "ID NAME CATEGORY MODEL ALARM TO UPDATED"_q);
    EXPECT_EQ(titles(80), "ID NAME CATEGORY ALARM TO UPDATED"_q);
    EXPECT_EQ(titles(70), "ID NAME CATEGORY UPDATED"_q);
    EXPECT_EQ(titles(60), "ID NAME CATEGORY"_q);
}

TEST_F(RkmonOutput, NoColorIsRespected)
{
    rkmon.setVariable("NO_COLOR"_q, "1"_q);
    const Result result = rkmon.runOnTerminal({"monitoring"_q, "list"_q}, 100);
    EXPECT_FALSE(result.output.contains(QChar(0x1B))) << result.output.toStdString();
}

TEST_F(RkmonOutput, DeleteAsksOnATerminal)
{
    const QString id = created("VH"_q);
    const QStringList command{"monitoring"_q, "delete"_q, id};
    for (const QByteArray& no :
         {QByteArray("n\n"), QByteArray("\n"), QByteArray("yesterday\n"), QByteArray("\x04")}) {
        const Result result = rkmon.runOnTerminal(command, 80, no);
        EXPECT_EQ(result.code, 1);
        EXPECT_TRUE(result.output.startsWith("Delete monitoring \"VH\" (Slope, %1)? [y/N] "_q.arg(id)))
            << result.output.toStdString();
        EXPECT_TRUE(result.output.contains("nothing was changed"_q));
    }
    EXPECT_EQ(rkmon.run({"monitoring"_q, "count"_q}).output, "1\n"_q);

    const Result done = rkmon.runOnTerminal(command, 80, "Y\n");
    EXPECT_EQ(done.code, 0) << done.output.toStdString();
    EXPECT_EQ(rkmon.run({"monitoring"_q, "count"_q}).output, "0\n"_q);
}

TEST_F(RkmonOutput, BrokenPipeEndsQuietly)
{
    created("VH"_q);
    const Result result =
        rkmon.runShell("set -o pipefail; (sleep 0.2; rkmon monitoring list) | true; echo ${PIPESTATUS[0]}"_q);
    EXPECT_EQ(result.output, "0\n"_q);
    EXPECT_EQ(result.messages, QString());
}

TEST_F(RkmonOutput, FullDiskIsAFailure)
{
    if (!QFileInfo::exists("/dev/full"_q)) {
        GTEST_SKIP() << "no /dev/full here";
    }
    const Result result = rkmon.runShell("rkmon monitoring list > /dev/full"_q);
    EXPECT_EQ(result.code, 1);
    EXPECT_TRUE(result.messages.startsWith("rkmon: cannot write the result: "_q))
        << result.messages.toStdString();
}

TEST_F(RkmonOutput, BashCompletes)
{
    const QString id = created("VH"_q);
    created("VH upper"_q);
    const auto completed = [&](const QString& words, int current) {
        const Result result = rkmon.runShell(
            "source '%1'; COMP_WORDS=(%2); COMP_CWORD=%3; _rkmon rkmon; printf '%s\\n' \"${COMPREPLY[@]}\""_q
                .arg(QStringLiteral(RKMON_COMPLETION), words, QString::number(current)));
        EXPECT_EQ(result.messages, QString());
        return linesOf(result.output);
    };
    EXPECT_EQ(completed("rkmon mon"_q, 1), QStringList{"monitoring"_q});
    EXPECT_EQ(completed("rkmon monitoring sh"_q, 2), QStringList{"show"_q});
    EXPECT_EQ(completed("rkmon monitoring list --sk"_q, 3), QStringList{"--skip"_q});
    EXPECT_EQ(completed("rkmon monitoring show ''"_q, 3), (QStringList{"VH"_q, "VH\\ upper"_q}));
    EXPECT_EQ(completed("rkmon monitoring show 'VH\\ u'"_q, 3), QStringList{"VH\\ upper"_q});
    EXPECT_EQ(completed("rkmon monitoring show \\'VH"_q, 3), (QStringList{"VH"_q, "VH upper"_q}));
    EXPECT_EQ(completed("rkmon monitoring show %1"_q.arg(id), 3), QStringList{id});
    EXPECT_EQ(completed("rkmon project use ''"_q, 3).size(), 1);
    EXPECT_EQ(completed("rkmon point import --cell %1"_q.arg(id.left(20)), 4), QStringList{id});
    EXPECT_EQ(completed("rkmon can edit S"_q, 3), QStringList{"Slope"_q});
    EXPECT_EQ(completed("rkmon can edit B"_q, 3).size(), 1); // quoted for the shell
    EXPECT_TRUE(completed("rkmon ''"_q, 1).contains("category"_q));
}
#endif
