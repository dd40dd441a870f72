#include "Configuration.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// A configuration folder and token of the test's own, and no settings from the caller's environment.
class ConfigurationTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.isValid());
        for (const char* name :
             {"RKMON_BASE_API", "RKMON_PROJECT", "RKMON_TOKEN_FILE", "RKMON_CA_FILE", "RKMON_PROFILE"}) {
            qunsetenv(name);
        }
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_folder.path()));
        write("token", "rkm_secret\n");
    }

    void TearDown() override
    {
        for (const char* name : {"XDG_CONFIG_HOME", "RKMON_CA_FILE", "RKMON_PROFILE"}) {
            qunsetenv(name);
        }
    }

    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }

    void write(const char* name, const QByteArray& content)
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path(name)).path()));
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
        file.close();
        ASSERT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    }

    // Overrides that are complete.
    ConfigurationOverrides overrides() const
    {
        ConfigurationOverrides overrides;
        overrides.baseApi = QStringLiteral("http://127.0.0.1:8600/");
        overrides.tokenFile = path("token");
        return overrides;
    }

    static QString failureOf(const ConfigurationOverrides& overrides)
    {
        try {
            readConfiguration(overrides);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.kind(), FailureKind::BadInput);
            return failure.message();
        }
        return QString();
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ConfigurationTest, OverridesWinOverEnvironmentAndFile)
{
    write("rkmon/config.ini", "base-api=http://file/\nproject=fromFile\ntoken-file=token\n");
    write("rkmon/token", "fileToken");
    const Configuration fromFile = readConfiguration({});
    EXPECT_EQ(fromFile.baseApi, QStringLiteral("http://file/"));
    EXPECT_EQ(fromFile.projectName, QStringLiteral("fromFile"));
    EXPECT_EQ(fromFile.token, QStringLiteral("fileToken"));

    write("variableToken", "variableToken");
    qputenv("RKMON_BASE_API", "http://variable/");
    qputenv("RKMON_PROJECT", "fromVariable");
    qputenv("RKMON_TOKEN_FILE", QFile::encodeName(path("variableToken")));
    const Configuration fromVariables = readConfiguration({});
    EXPECT_EQ(fromVariables.baseApi, QStringLiteral("http://variable/"));
    EXPECT_EQ(fromVariables.projectName, QStringLiteral("fromVariable"));
    EXPECT_EQ(fromVariables.token, QStringLiteral("variableToken"));

    ConfigurationOverrides given = overrides();
    given.project = QStringLiteral("fromOverride");
    const Configuration fromOverrides = readConfiguration(given);
    EXPECT_EQ(fromOverrides.baseApi, QStringLiteral("http://127.0.0.1:8600/"));
    EXPECT_EQ(fromOverrides.projectName, QStringLiteral("fromOverride"));
    EXPECT_EQ(fromOverrides.token, QStringLiteral("rkm_secret"));
}

TEST_F(ConfigurationTest, EmptyVariableSaysNothing)
{
    write("rkmon/config.ini", "project=fromFile\n");
    qputenv("RKMON_PROJECT", "");
    EXPECT_EQ(readConfiguration(overrides()).projectName, QStringLiteral("fromFile"));
}

TEST_F(ConfigurationTest, MissingSettingNamesTheWaysToGiveIt)
{
    ConfigurationOverrides noAddress = overrides();
    noAddress.baseApi.clear();
    const QString message = failureOf(noAddress);
    for (const char* way : {"RKMON_BASE_API", "base-api = ...", "rkmon/config.ini"}) {
        EXPECT_TRUE(message.contains(QString::fromUtf8(way))) << way << " in " << qPrintable(message);
    }

    ConfigurationOverrides noToken = overrides();
    noToken.tokenFile.clear();
    EXPECT_TRUE(failureOf(noToken).contains(QStringLiteral("RKMON_TOKEN_FILE")));
}

TEST_F(ConfigurationTest, MissingSettingHasItsRemedy)
{
    EXPECT_EQ(missingSetting(Setting::Address).remedy(), Remedy::GiveAddress);
    EXPECT_EQ(missingSetting(Setting::Project).remedy(), Remedy::GiveProject);
    EXPECT_EQ(missingSetting(Setting::TokenFile).remedy(), Remedy::GiveTokenFile);
}

TEST_F(ConfigurationTest, AddressGetsItsSlash)
{
    ConfigurationOverrides given = overrides();
    given.baseApi = QStringLiteral("https://monitoring.example:8443/site");
    EXPECT_EQ(readConfiguration(given).baseApi, QStringLiteral("https://monitoring.example:8443/site/"));
}

TEST_F(ConfigurationTest, RefusesWhatIsNoAddress)
{
    for (const char* address : {"127.0.0.1:8600", "ftp://host/", "http://", "http:///path", "http://h/?q=1",
                                "http://h/#part", "http://h/%20", "http://h:x/"}) {
        ConfigurationOverrides given = overrides();
        given.baseApi = QString::fromUtf8(address);
        EXPECT_FALSE(failureOf(given).isEmpty()) << address;
    }
}

TEST_F(ConfigurationTest, RefusesAPasswordInTheAddressWithoutShowingIt)
{
    for (const char* address : {"http://user:secret@h/", "user:secret@h", "ftp://user:secret@h/"}) {
        ConfigurationOverrides given = overrides();
        given.baseApi = QString::fromUtf8(address);
        const QString failure = failureOf(given);
        EXPECT_TRUE(failure.contains(QStringLiteral("password"))) << failure.toStdString();
        EXPECT_FALSE(failure.contains(QStringLiteral("secret"))) << failure.toStdString();
    }
}

TEST_F(ConfigurationTest, TellsIdentifierAndNameOfAProjectApart)
{
    ConfigurationOverrides given = overrides();
    for (const char* name : {"a/b", "..", "Coastal bluff", "%1", "0123456789abcdef0123456"}) {
        given.project = QString::fromUtf8(name);
        const Configuration configuration = readConfiguration(given);
        EXPECT_EQ(configuration.project, QString()) << name;
        EXPECT_EQ(configuration.projectName, given.project);
    }
    given.project = QStringLiteral("0123456789abcdef01234567");
    EXPECT_EQ(readConfiguration(given).project, given.project);
    EXPECT_EQ(readConfiguration(given).projectName, QString());
}

TEST_F(ConfigurationTest, DeadlineIsInSeconds)
{
    ConfigurationOverrides given = overrides();
    EXPECT_FALSE(readConfiguration(given).deadline);
    given.deadline = QStringLiteral("2.5");
    EXPECT_EQ(readConfiguration(given).deadline, std::chrono::milliseconds(2500));
    for (const char* deadline : {"0", "-1", "soon", "nan", "inf", "86401", "2s"}) {
        given.deadline = QString::fromUtf8(deadline);
        EXPECT_FALSE(failureOf(given).isEmpty()) << deadline;
    }
}

TEST_F(ConfigurationTest, TokenLosesItsLineEnd)
{
    for (const char* content : {"rkm_x", "rkm_x\n", "rkm_x\r\n"}) {
        write("token", content);
        EXPECT_EQ(readConfiguration(overrides()).token, QStringLiteral("rkm_x"));
    }
}

TEST_F(ConfigurationTest, RefusesATokenFileThatHoldsNoToken)
{
    const std::vector<QByteArray> contents{"",
                                           "\n",
                                           "a b",
                                           "a\nb\n",
                                           "a\n\n",
                                           "t\xC3\xB6ken",
                                           " a",
                                           QByteArray("a\0b", 3),
                                           QByteArray(5000, 'a')};
    for (const QByteArray& content : contents) {
        write("token", content);
        EXPECT_TRUE(failureOf(overrides()).contains(path("token")))
            << content.toPercentEncoding().constData();
    }
    ConfigurationOverrides missing = overrides();
    missing.tokenFile = path("missing");
    EXPECT_TRUE(failureOf(missing).contains(path("missing")));
    missing.tokenFile = m_folder.path();
    EXPECT_TRUE(failureOf(missing).contains(m_folder.path()));
}

#ifndef Q_OS_WIN
TEST_F(ConfigurationTest, WarnsOfATokenThatOthersCanRead)
{
    EXPECT_TRUE(readConfiguration(overrides()).warnings.isEmpty());
    QFile::setPermissions(path("token"), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther);
    const QStringList warnings = readConfiguration(overrides()).warnings;
    ASSERT_EQ(warnings.size(), 1);
    EXPECT_TRUE(warnings.constFirst().contains(path("token")));
}
#endif

TEST_F(ConfigurationTest, NamedFileMustExist)
{
    ConfigurationOverrides given = overrides();
    given.configFile = path("missing.ini");
    EXPECT_TRUE(failureOf(given).contains(given.configFile));
    given.configFile = m_folder.path();
    EXPECT_TRUE(failureOf(given).contains(given.configFile));
}

TEST_F(ConfigurationTest, RefusesUnknownSettings)
{
    write("rkmon/config.ini", "base_api=http://file/\n");
    const QString message = failureOf(overrides());
    EXPECT_TRUE(message.contains(QStringLiteral("base_api"))) << qPrintable(message);
    EXPECT_TRUE(message.contains(QStringLiteral("token-file"))) << qPrintable(message);
}

TEST_F(ConfigurationTest, RefusesAFileThatIsNoList)
{
    write("rkmon/config.ini", "[open\nnothing here\n");
    EXPECT_FALSE(failureOf(overrides()).isEmpty());
}

TEST_F(ConfigurationTest, FileMayHoldEverySetting)
{
    write("ca.pem", "certificates");
    write("site.ini", "base-api = http://file/\ntoken-file = token\ndeadline = 4\nca-file = ca.pem\n");
    ConfigurationOverrides given;
    given.configFile = path("site.ini");
    const Configuration configuration = readConfiguration(given);
    EXPECT_EQ(configuration.token, QStringLiteral("rkm_secret"));
    EXPECT_EQ(configuration.deadline, std::chrono::seconds(4));
    EXPECT_EQ(configuration.caFile, path("ca.pem"));
}

TEST_F(ConfigurationTest, NamesTheLineThatIsNotUnderstood)
{
    write("rkmon/config.ini", "project = p\nnothing here\n");
    EXPECT_TRUE(failureOf(overrides()).startsWith(path("rkmon/config.ini") + QStringLiteral(":2: ")));
}

TEST_F(ConfigurationTest, ProfileGoesBeforeWhatHoldsForAll)
{
    write("rkmon/config.ini", "base-api = http://all/\nproject = ofAll\ndefault-profile = south\n"
                              "[profile north]\nproject = ofNorth\n[profile south]\nproject = ofSouth\n");
    ConfigurationOverrides given;
    given.tokenFile = path("token");
    const Configuration usual = readConfiguration(given);
    EXPECT_EQ(usual.baseApi, QStringLiteral("http://all/"));
    EXPECT_EQ(usual.projectName, QStringLiteral("ofSouth"));
    EXPECT_EQ(usual.profile, QStringLiteral("south"));
    EXPECT_EQ(usual.configFile, path("rkmon/config.ini"));
    qputenv("RKMON_PROFILE", "north");
    EXPECT_EQ(readConfiguration(given).projectName, QStringLiteral("ofNorth"));
    given.profile = QStringLiteral("south");
    EXPECT_EQ(readConfiguration(given).projectName, QStringLiteral("ofSouth"));
    EXPECT_EQ(configuredProfiles(given), (QStringList{QStringLiteral("north"), QStringLiteral("south")}));
}

TEST_F(ConfigurationTest, NamedProfileGoesBeforeTheEnvironment)
{
    write("rkmon/config.ini", "default-profile = north\n[profile north]\nproject = ofNorth\n");
    qputenv("RKMON_PROJECT", "fromVariable");
    ConfigurationOverrides given = overrides();
    EXPECT_EQ(readConfiguration(given).projectName, QStringLiteral("fromVariable"));
    given.profile = QStringLiteral("north");
    EXPECT_EQ(readConfiguration(given).projectName, QStringLiteral("ofNorth"));
    given.project = QStringLiteral("fromOverride");
    EXPECT_EQ(readConfiguration(given).projectName, QStringLiteral("fromOverride"));
}

TEST_F(ConfigurationTest, UnknownProfileNamesThoseThatAreKnown)
{
    ConfigurationOverrides given = overrides();
    given.profile = QStringLiteral("nort");
    EXPECT_TRUE(failureOf(given).endsWith(QStringLiteral("it has none")));
    write("rkmon/config.ini", "[profile north]\n[profile south]\n");
    EXPECT_TRUE(failureOf(given).endsWith(QStringLiteral("known are north, south")));
}

TEST_F(ConfigurationTest, CertificatesMayBeOfTheEnvironment)
{
    write("ca.pem", "certificates");
    qputenv("RKMON_CA_FILE", QFile::encodeName(path("ca.pem")));
    EXPECT_EQ(readConfiguration(overrides()).caFile, path("ca.pem"));
}

TEST_F(ConfigurationTest, CertificatesMustBeReadable)
{
    ConfigurationOverrides given = overrides();
    given.caFile = path("missing.pem");
    EXPECT_TRUE(failureOf(given).contains(given.caFile));
}
