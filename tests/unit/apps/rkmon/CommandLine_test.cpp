#include "CommandLine.h"

#include "Completion.h"
#include "CompletionValues.h"

#include <gtest/gtest.h>

namespace {

// What the shell hands over for `line`; the last word is being typed.
QStringList completed(const char* line)
{
    const CommandLine commandLine;
    return completions(commandLine.app(), QString::fromUtf8(line).split(QLatin1Char(' ')));
}

} // namespace

TEST(CommandLine, CommonOptionsStandAnywhere)
{
    CommandLine commandLine;
    const auto finished = commandLine.parse(
        {QStringLiteral("--base-api"), QStringLiteral("http://a/"), QStringLiteral("monitoring"),
         QStringLiteral("list"), QStringLiteral("--json"), QStringLiteral("--project"), QStringLiteral("p")});
    EXPECT_FALSE(finished);
    EXPECT_EQ(commandLine.overrides().baseApi, QStringLiteral("http://a/"));
    EXPECT_EQ(commandLine.overrides().project, QStringLiteral("p"));
    EXPECT_EQ(commandLine.form(), OutputForm::Json);
    EXPECT_TRUE(commandLine.command());
}

TEST(CommandLine, RefusesWhatIsNotUtf8)
{
    CommandLine commandLine;
    EXPECT_EQ(commandLine.parse({QStringLiteral("monitoring"), QStringLiteral("show"),
                                 QString(QChar(QChar::ReplacementCharacter))}),
              ExitCode::Usage);
}

TEST(Completion, OffersCommands)
{
    EXPECT_EQ(completed("mon"), QStringList{QStringLiteral("monitoring")});
    EXPECT_EQ(completed("can d"), QStringList{QStringLiteral("delete")});
    EXPECT_TRUE(completed("monitoring ").contains(QStringLiteral("update")));
    EXPECT_TRUE(completed("").contains(QStringLiteral("category")));
    EXPECT_EQ(completed("xyz"), QStringList());
}

TEST(Completion, OffersOptionsOfTheCommandAndOfAll)
{
    const QStringList options = completed("monitoring list --");
    EXPECT_TRUE(options.contains(QStringLiteral("--exact-name")));
    EXPECT_TRUE(options.contains(QStringLiteral("--base-api")));
    EXPECT_FALSE(options.contains(QStringLiteral("--alarm-to")));
    EXPECT_EQ(completed("monitoring list --sk"), QStringList{QStringLiteral("--skip")});
}

TEST(Completion, TellsKindsOfValues)
{
    EXPECT_EQ(completed("monitoring show "), QStringList{QStringLiteral("@monitoring")});
    EXPECT_EQ(completed("monitoring update --name x "), QStringList{QStringLiteral("@monitoring")});
    EXPECT_EQ(completed("monitoring create --category "), QStringList{QStringLiteral("@category")});
    EXPECT_EQ(completed("can edit S"), QStringList{QStringLiteral("@category")});
    EXPECT_EQ(completed("--token-file "), QStringList{QStringLiteral("@file")});
    EXPECT_EQ(completed("monitoring list --token-file = "), QStringList{QStringLiteral("@file")});
    EXPECT_EQ(completed("subcategory show "), QStringList{QStringLiteral("@sub-category")});
    EXPECT_EQ(completed("group create --sub-category "), QStringList{QStringLiteral("@sub-category")});
    EXPECT_EQ(completed("group update "), QStringList{QStringLiteral("@group")});
    EXPECT_EQ(completed("project use "), QStringList{QStringLiteral("@project")});
    EXPECT_EQ(completed("ping --profile "), QStringList{QStringLiteral("@profile")});
    EXPECT_EQ(completed("data history "), QStringList());
}

TEST(Completion, AsksTheServiceThatIsNamed)
{
    const ConfigurationOverrides overrides =
        overridesIn(QStringLiteral("--profile north monitoring show --base-api = http://a/ --token-file")
                        .split(QLatin1Char(' ')));
    EXPECT_EQ(overrides.profile, QStringLiteral("north"));
    EXPECT_EQ(overrides.baseApi, QStringLiteral("http://a/"));
    EXPECT_EQ(overrides.tokenFile, QString());
}

TEST(Completion, OffersNothingForFreeText)
{
    EXPECT_EQ(completed("monitoring create --name "), QStringList());
}
