#include "Configuration.h"

#include <NetworkManager.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>
#include <RKBaseApi.h>
#include <RKSoftCache.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::chrono::seconds usualConnectTimeout{10};

Failure badInput(const QString& message)
{
    return {FailureKind::BadInput, message};
}

QString usualConfigFile()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return QDir(folder).filePath(QStringLiteral("rkmon/config.ini"));
}

// The settings of the configuration file; a file that was named must exist.
class ConfigFile
{
public:
    explicit ConfigFile(const QString& named)
        : m_path(named.isEmpty() ? usualConfigFile() : named), m_settings(m_path, QSettings::IniFormat)
    {
        m_settings.setIniCodec("UTF-8");
        const QFileInfo file(m_path);
        if (!file.exists() && named.isEmpty()) {
            return;
        }
        if (!file.isFile() || !file.isReadable()) {
            throw badInput(QStringLiteral("cannot read the configuration file %1").arg(m_path));
        }
        if (m_settings.status() != QSettings::NoError) {
            throw badInput(
                QStringLiteral("the configuration file %1 is not a list of key=value lines").arg(m_path));
        }
        refuseUnknownKeys();
    }

    QString value(const QString& key) const
    {
        // An unquoted comma makes the setting a list; no setting of ours is one.
        return m_settings.value(key).toStringList().join(QLatin1Char(','));
    }

    // A path, relative to the folder of the configuration file.
    QString path(const QString& key) const
    {
        const QString text = value(key);
        return text.isEmpty() ? text : QFileInfo(m_path).dir().absoluteFilePath(text);
    }

private:
    void refuseUnknownKeys() const
    {
        static const QStringList known{QStringLiteral("base-api"), QStringLiteral("project"),
                                       QStringLiteral("token-file"), QStringLiteral("deadline"),
                                       QStringLiteral("ca-file")};
        const QStringList keys = m_settings.allKeys();
        for (const QString& key : keys) {
            if (!known.contains(key)) {
                throw badInput(QStringLiteral("unknown setting \"%1\" in %2; known are %3")
                                   .arg(key, m_path, known.join(QLatin1String(", "))));
            }
        }
    }

    QString m_path;
    QSettings m_settings;
};

struct SettingNames
{
    const char* meaning;
    const char* variable;
    const char* key;
    Remedy remedy;
};

SettingNames namesOf(Setting setting)
{
    switch (setting) {
    case Setting::Address:
        return {"address of the service", "RKMON_BASE_API", "base-api", Remedy::GiveAddress};
    case Setting::Project:
        return {"project", "RKMON_PROJECT", "project", Remedy::GiveProject};
    case Setting::TokenFile:
        break;
    }
    return {"token file", "RKMON_TOKEN_FILE", "token-file", Remedy::GiveTokenFile};
}

QString variableOf(Setting setting)
{
    return QString::fromUtf8(qgetenv(namesOf(setting).variable));
}

QString keyOf(Setting setting)
{
    return QLatin1String(namesOf(setting).key);
}

QString firstGiven(const QString& given, const QString& variable, const QString& setting)
{
    if (!given.isEmpty()) {
        return given;
    }
    return variable.isEmpty() ? setting : variable;
}

QString checkedAddress(const QString& text)
{
    // Not shown: what stands before an "@" may be a password.
    if (text.contains(QLatin1Char('@'))) {
        throw badInput(QStringLiteral("the address of the service must not hold a user name or a password; "
                                      "the token file says who asks"));
    }
    const QUrl url(text, QUrl::StrictMode);
    const bool isHttp = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    // A percent sign would be taken for a place marker of the library's URL templates.
    if (!url.isValid() || !isHttp || url.host().isEmpty() || url.hasQuery() || url.hasFragment() ||
        text.contains(QLatin1Char('%'))) {
        throw badInput(
            QStringLiteral("\"%1\" is not the address of a service; give one like http://127.0.0.1:8600/")
                .arg(text));
    }
    return text.endsWith(QLatin1Char('/')) ? text : text + QLatin1Char('/');
}

QString checkedProject(const QString& text)
{
    static const QRegularExpression identifier(QStringLiteral("\\A[0-9A-Za-z_-]*\\z"));
    if (!identifier.match(text).hasMatch()) {
        throw badInput(QStringLiteral("\"%1\" is not the identifier of a project").arg(text));
    }
    return text;
}

std::optional<std::chrono::milliseconds> checkedDeadline(const QString& text)
{
    constexpr double longest = 24.0 * 60 * 60;
    constexpr double shortest = 0.001;
    if (text.isEmpty()) {
        return std::nullopt;
    }
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= shortest && seconds <= longest)) {
        throw badInput(
            QStringLiteral("the deadline \"%1\" is not a number of seconds from 0.001 to 86400").arg(text));
    }
    constexpr double millisecondsPerSecond = 1000;
    return std::chrono::milliseconds(std::llround(seconds * millisecondsPerSecond));
}

QString readToken(const QString& path)
{
    constexpr qint64 longest = 4096;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw badInput(QStringLiteral("cannot read the token file %1: %2").arg(path, file.errorString()));
    }
    QByteArray content = file.read(longest + 1);
    if (content.endsWith('\n')) {
        content.chop(1);
    }
    if (content.endsWith('\r')) {
        content.chop(1);
    }
    if (content.isEmpty()) {
        throw badInput(QStringLiteral("the token file %1 is empty").arg(path));
    }
    for (const char character : qAsConst(content)) {
        if (character <= ' ' || character > '~' || content.size() > longest) {
            throw badInput(
                QStringLiteral("the token file %1 must hold the token alone, on one line").arg(path));
        }
    }
    return QString::fromLatin1(content);
}

bool isReadableByOthers(const QString& path)
{
#ifdef Q_OS_WIN
    Q_UNUSED(path)
    return false; // access lists, not permission bits, decide there
#else
    return (QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther)) != 0;
#endif
}

} // namespace

Failure missingSetting(Setting setting)
{
    const SettingNames names = namesOf(setting);
    return {FailureKind::BadInput,
            QStringLiteral("no %1 given; set %2, or write \"%3 = ...\" into %4")
                .arg(QLatin1String(names.meaning), QLatin1String(names.variable), QLatin1String(names.key),
                     usualConfigFile()),
            names.remedy};
}

Configuration readConfiguration(const ConfigurationOverrides& overrides)
{
    const ConfigFile file(overrides.configFile);
    Configuration configuration;

    const QString baseApi =
        firstGiven(overrides.baseApi, variableOf(Setting::Address), file.value(keyOf(Setting::Address)));
    if (baseApi.isEmpty()) {
        throw missingSetting(Setting::Address);
    }
    configuration.baseApi = checkedAddress(baseApi);

    configuration.project = checkedProject(
        firstGiven(overrides.project, variableOf(Setting::Project), file.value(keyOf(Setting::Project))));

    configuration.tokenFile =
        firstGiven(overrides.tokenFile, variableOf(Setting::TokenFile), file.path(keyOf(Setting::TokenFile)));
    if (configuration.tokenFile.isEmpty()) {
        throw missingSetting(Setting::TokenFile);
    }
    configuration.token = readToken(configuration.tokenFile);
    if (isReadableByOthers(configuration.tokenFile)) {
        configuration.warnings.append(
            QStringLiteral("the token file %1 can be read by other users; chmod 600 it")
                .arg(configuration.tokenFile));
    }

    configuration.deadline =
        checkedDeadline(firstGiven(overrides.deadline, QString(), file.value(QStringLiteral("deadline"))));

    configuration.caFile = firstGiven(overrides.caFile, QString(), file.path(QStringLiteral("ca-file")));
    if (!configuration.caFile.isEmpty() && !QFileInfo(configuration.caFile).isReadable()) {
        throw badInput(QStringLiteral("cannot read the certificates in %1").arg(configuration.caFile));
    }
    return configuration;
}

void applyConfiguration(const Configuration& configuration)
{
    RKBaseApi::GetInstance().setBaseApi(configuration.baseApi);
    GetSoftCache()->setProjectId(configuration.project);
    NetworkManager& network = NetworkManager::instance();
    if (!network.setBearerToken(configuration.token)) {
        throw badInput(
            QStringLiteral("the token file %1 does not hold a token").arg(configuration.tokenFile));
    }
    if (configuration.deadline) {
        network.setDeadline(*configuration.deadline);
        network.setConnectTimeout(
            std::min<std::chrono::milliseconds>(usualConnectTimeout, *configuration.deadline));
    }
    if (!configuration.caFile.isEmpty()) {
        network.setCaFile(configuration.caFile);
    }
}
