#include "ConfigurationFile.h"

#include "Failure.h"
#include "Text.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace {

ConfigurationFile fileOf(const QByteArray& content)
{
    return {"site.ini"_q, content};
}

std::string failureOf(const QByteArray& content)
{
    try {
        fileOf(content);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::BadInput);
        return failure.message().toStdString();
    }
    return {};
}

// What the file is after it was written.
QByteArray written(const ConfigurationFile& file)
{
    file.write();
    QFile reader(file.path());
    EXPECT_TRUE(reader.open(QIODevice::ReadOnly));
    return reader.readAll();
}

} // namespace

TEST(ConfigurationFile, ReadsSettingsOfAllAndOfProfiles)
{
    const ConfigurationFile file = fileOf("\xEF\xBB\xBF# where the service is\r\n"
                                          "base-api=https://a/\r\n"
                                          "  deadline  =  4  \r\n"
                                          "; the north\r\n"
                                          "[profile north]\r\n"
                                          "project = p1\r\n"
                                          "\r\n"
                                          "[ profile  \xE5\x8D\x97 side ]\r\n"
                                          "token-file = \"a b=c,#d\"");
    EXPECT_EQ(file.profiles(), QStringList({"north"_q, "南 side"_q}));
    EXPECT_EQ(file.value({}, "base-api"_q), "https://a/"_q);
    EXPECT_EQ(file.value({}, "deadline"_q), "4"_q);
    EXPECT_EQ(file.value({}, "project"_q), QString());
    EXPECT_EQ(file.value("north"_q, "project"_q), "p1"_q);
    EXPECT_EQ(file.value("north"_q, "base-api"_q), QString());
    EXPECT_EQ(file.value("南 side"_q, "token-file"_q), "a b=c,#d"_q);
}

TEST(ConfigurationFile, NamesTheLineThatIsNotUnderstood)
{
    using testing::StartsWith;
    EXPECT_THAT(failureOf("# x\n\nrubbish\n"), StartsWith("site.ini:3: \"rubbish\" is not understood"));
    EXPECT_THAT(failureOf("project = a\n[open\n"), StartsWith("site.ini:2: \"[open\" is no section"));
    EXPECT_THAT(failureOf("[north]\n"), StartsWith("site.ini:1: \"[north]\" is no section"));
    EXPECT_THAT(failureOf("[profile ]\n"), StartsWith("site.ini:1: "));
    EXPECT_THAT(failureOf("projet = a\n"), StartsWith("site.ini:1: unknown setting \"projet\"; known are "));
    EXPECT_THAT(failureOf("project = a\nproject = b\n"),
                StartsWith("site.ini:2: \"project\" is set in line 1 already"));
    EXPECT_THAT(failureOf("[profile a]\n[profile a]\n"),
                StartsWith("site.ini:2: the profile \"a\" is there"));
    EXPECT_THAT(failureOf("[profile a]\ndefault-profile = b\n"), StartsWith("site.ini:2: unknown setting"));
    EXPECT_THAT(failureOf("project = \xFF\n"), StartsWith("site.ini:1: the line is not UTF-8"));
    EXPECT_THAT(failureOf(QByteArray("project = a\0b\n", 14)), StartsWith("site.ini:1: "));
    EXPECT_EQ(failureOf(""), "");
}

TEST(ConfigurationFile, ChangesOneLineAndKeepsTheOthers)
{
    const QTemporaryDir folder;
    const QString path = QDir(folder.path()).filePath("new/site.ini"_q);
    ConfigurationFile file(path,
                           "# mine\nproject=old\n\n[profile north]\n# of north\nbase-api = http://n/\n\n"
                           "# of south\n[profile south]");
    file.setValue({}, "project"_q, "p0"_q);
    file.setValue("north"_q, "project"_q, "p1"_q);
    file.setValue("south"_q, "project"_q, "p2"_q);
    EXPECT_EQ(written(file), "# mine\nproject = p0\n\n[profile north]\n# of north\nbase-api = http://n/\n"
                             "project = p1\n\n# of south\n[profile south]\nproject = p2\n");
    const ConfigurationFile again = ConfigurationFile::read(path, true);
    EXPECT_EQ(again.value("north"_q, "project"_q), "p1"_q);
    EXPECT_EQ(again.profiles(), file.profiles());
}

TEST(ConfigurationFile, KeepsLineEnds)
{
    const QTemporaryDir folder;
    const QString path = QDir(folder.path()).filePath("site.ini"_q);
    ConfigurationFile file(path, "base-api = http://n/\r\n");
    file.setValue({}, "project"_q, "p"_q);
    EXPECT_EQ(written(file), "base-api = http://n/\r\nproject = p\r\n");
}

TEST(ConfigurationFile, MayBeMadeByTheFirstSetting)
{
    const QTemporaryDir folder;
    ConfigurationFile file = ConfigurationFile::read(QDir(folder.path()).filePath("site.ini"_q), false);
    file.setValue({}, "project"_q, "p"_q);
    EXPECT_EQ(written(file), "project = p\n");
}

TEST(ConfigurationFile, SaysWhenItCannotBeWritten)
{
    const QTemporaryDir folder;
    ConfigurationFile file(folder.path(), "project = a\n");
    EXPECT_THROW(file.write(), Failure);
}
