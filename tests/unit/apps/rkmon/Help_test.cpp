#include "CommandLine.h"
#include "DisplayText.h"
#include "Failure.h"
#include "HelpCommand.h"
#include "HelpFormatter.h"
#include "HelpTopics.h"
#include "ManualPages.h"
#include "Text.h"

#include <gmock/gmock.h>

#include <functional>

// What people read of rkmon: the help of every command, topics and the manual.

namespace {

// Calls `look` with the words of every command, those of the program itself first.
void visitCommands(const CLI::App& app, const QStringList& words,
                   const std::function<void(const CLI::App&, const QStringList&)>& look)
{
    look(app, words);
    for (const CLI::App* below : app.get_subcommands({})) {
        visitCommands(*below, words + QStringList{QString::fromStdString(below->get_name())}, look);
    }
}

void expectFits(const QString& text, int mostLines, const std::string& what)
{
    const QStringList lines = text.split(QLatin1Char('\n'));
    EXPECT_LE(lines.size(), mostLines + 1) << what; // the last one is empty
    for (const QString& line : lines) {
        EXPECT_LE(display::width(line), help::lineWidth) << what << ": " << line.toStdString();
    }
}

QString refusalOf(const CLI::App& root, const QStringList& words)
{
    try {
        helpOn(root, words);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::BadInput);
        return failure.message();
    }
    return QString();
}

} // namespace

TEST(Help, OfEveryCommandFitsAScreenAndShowsExamples)
{
    const CommandLine commandLine;
    visitCommands(commandLine.app(), {}, [&](const CLI::App&, const QStringList& words) {
        const QString help = helpOn(commandLine.app(), words);
        const std::string what = "rkmon " + words.join(QLatin1Char(' ')).toStdString();
        expectFits(help, 40, what);
        const QString examples = help.section("Examples:\n"_q, 1);
        EXPECT_GE(examples.count(" rkmon "_q), 2) << what;
        EXPECT_TRUE(help.contains(QString::fromStdString("Usage: " + what))) << what;
    });
}

TEST(Help, OfTheProgramIsShortAndNamesEveryTopic)
{
    const CommandLine commandLine;
    const QString help = helpOn(commandLine.app(), {});
    expectFits(help, 35, "rkmon");
    const QString topics = help.section("Topics of help: "_q, 1);
    for (const HelpTopic& topic : helpTopics()) {
        EXPECT_TRUE(topics.contains(topic.name)) << topic.name.toStdString();
    }
    // What the help leaves out is in a topic.
    const QString configuration = helpOn(commandLine.app(), {"configuration"_q});
    for (const CLI::Option* option : commandLine.app().get_options({})) {
        const QString name = QString::fromStdString(option->get_name());
        EXPECT_TRUE(help.contains(name) || configuration.contains(name)) << name.toStdString();
    }
}

TEST(Help, TopicsFitATerminal)
{
    const CommandLine commandLine;
    for (const HelpTopic& topic : helpTopics()) {
        expectFits(helpOn(commandLine.app(), {topic.name}), 24, topic.name.toStdString());
    }
}

TEST(Help, OnWhatThereIsNotSuggests)
{
    const CommandLine commandLine;
    EXPECT_EQ(refusalOf(commandLine.app(), {"tims"_q}),
              "there is no help on \"tims\"; did you mean \"times\"?"_q);
    EXPECT_EQ(refusalOf(commandLine.app(), {"monitoring"_q, "lst"_q}),
              "there is no help on \"lst\"; did you mean \"list\"?"_q);
    EXPECT_EQ(refusalOf(commandLine.app(), {"times"_q, "x"_q}),
              "there is no help on \"times\"; rkmon help lists commands and topics"_q);
}

TEST(Help, WrapsAtBlanks)
{
    EXPECT_EQ(help::wrapped("aa bb cc"_q, 5), (QStringList{"aa bb"_q, "cc"_q}));
    EXPECT_EQ(help::wrapped("aaaaaa b"_q, 3), (QStringList{"aaaaaa"_q, "b"_q}));
    EXPECT_EQ(help::wrapped(QString(), 3), QStringList());
}

TEST(ManualPages, TellOfEveryCommandAndOption)
{
    const CommandLine commandLine;
    const QMap<QString, QByteArray> pages = manualPages(commandLine.app(), "1.2.3"_q);
    EXPECT_EQ(pages.size(), static_cast<int>(commandLine.app().get_subcommands({}).size()) + 1);
    visitCommands(commandLine.app(), {}, [&](const CLI::App& app, const QStringList& words) {
        const QString name = words.isEmpty() ? "rkmon.1"_q : "rkmon-%1.1"_q.arg(words.constFirst());
        const QByteArray page = pages.value(name);
        EXPECT_TRUE(page.startsWith(".TH ")) << name.toStdString();
        for (const CLI::Option* option : app.get_options()) {
            for (const std::string& longName : option->get_lnames()) {
                const QString roff = "\\-\\-"_q + QString::fromStdString(longName).replace("-"_q, "\\-"_q);
                EXPECT_TRUE(page.contains(roff.toUtf8())) << name.toStdString() << ": " << longName;
            }
        }
    });
}

TEST(ManualPages, NothingOfATextIsTakenForARequest)
{
    const CommandLine commandLine;
    const QMap<QString, QByteArray> pages = manualPages(commandLine.app(), "1.2.3"_q);
    for (const QByteArray& page : pages) {
        for (const QByteArray& line : page.split('\n')) {
            EXPECT_FALSE(line.startsWith('\'')) << line.toStdString();
            if (line.startsWith('.')) {
                EXPECT_THAT(line.toStdString(), testing::MatchesRegex("\\.(TH|SH|TP|PP|nf|fi)( .*)?"));
            }
        }
    }
}
