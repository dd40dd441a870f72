#include "RkmonTest.h"
#include "Text.h"

#include <QDir>
#include <QFile>

// Where rkmon takes its settings from, and what it says of service, project and token.

namespace {

class RkmonConfiguration : public RkmonTest
{
protected:
    // Writes rkmon/config.ini, beside the token; nothing is set in the environment any more.
    void writeConfiguration(const QString& text)
    {
        for (const QString& variable : {"RKMON_BASE_API"_q, "RKMON_PROJECT"_q, "RKMON_TOKEN_FILE"_q}) {
            rkmon.removeVariable(variable);
        }
        QDir(rkmon.folder()).mkpath("rkmon"_q);
        QFile file(configurationFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("base-api = %1\ntoken-file = ../token\n"_q.arg(service().baseAddress()).toUtf8());
        file.write(text.toUtf8());
    }

    QString configurationFile() const { return rkmon.folder() + "/rkmon/config.ini"_q; }

    Result count(const QStringList& more = {}) const
    {
        return rkmon.run(QStringList{"monitoring"_q, "count"_q} + more);
    }
};

} // namespace

TEST_F(RkmonConfiguration, ProfilesChooseTheProject)
{
    created("VH"_q);
    writeConfiguration(
        "[profile north]\nproject = %1\n[profile south]\nproject = 000000000000000000000000\n"_q.arg(
            project));
    EXPECT_EQ(count().code, 2);
    EXPECT_EQ(count({"--profile"_q, "north"_q}).output, "1\n"_q);
    EXPECT_EQ(count({"--profile"_q, "south"_q}).code, 4);
    rkmon.setVariable("RKMON_PROFILE"_q, "north"_q);
    EXPECT_EQ(count().output, "1\n"_q);
    const Result unknown = count({"--profile"_q, "nort"_q});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_EQ(unknown.messages, "rkmon: there is no profile \"nort\" in %1; known are north, south\n"_q.arg(
                                    configurationFile()));
}

TEST_F(RkmonConfiguration, NamesTheLineThatIsNotUnderstood)
{
    writeConfiguration("# the site\nprojct = x\n"_q);
    const Result result = count();
    EXPECT_EQ(result.code, 2);
    EXPECT_TRUE(
        result.messages.startsWith("rkmon: %1:4: unknown setting \"projct\""_q.arg(configurationFile())))
        << result.messages.toStdString();
}
