#include "Configuration.h"

#include "ConfigurationFile.h"
#include "Identifier.h"

#include <NetworkManager.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
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

ConfigurationFile configurationFile(const ConfigurationOverrides& overrides)
{
    const bool isNamed = !overrides.configFile.isEmpty();
    return ConfigurationFile::read(isNamed ? overrides.configFile : usualConfigFile(), isNamed);
}

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

QString firstGiven(const QStringList& texts)
{
    for (const QString& text : texts) {
        if (!text.isEmpty()) {
            return text;
        }
    }
    return QString();
}

QString chosenProfile(const ConfigurationOverrides& overrides, const ConfigurationFile& file)
{
    const QString profile = firstGiven({overrides.profile, QString::fromUtf8(qgetenv("RKMON_PROFILE")),
                                        file.value(QString(), QStringLiteral("default-profile"))});
    const QStringList known = file.profiles();
    if (profile.isEmpty() || known.contains(profile)) {
        return profile;
    }
    throw badInput(QStringLiteral("there is no profile \"%1\" in %2; %3")
                       .arg(profile, file.path(),
                            known.isEmpty()
                                ? QStringLiteral("it has none")
                                : QStringLiteral("known are ") + known.join(QStringLiteral(", "))));
}

// What the user said of the settings, in the order in which it is taken.
class Sources
{
public:
    Sources(const ConfigurationOverrides& overrides, const ConfigurationFile& file)
        : m_file(file), m_profile(chosenProfile(overrides, file)),
          m_isProfileNamed(!overrides.profile.isEmpty())
    {
    }

    const QString& profile() const { return m_profile; }

    QString text(const QString& given, const char* variable, const char* key) const
    {
        return first(given, variable, m_file.value(m_profile, QLatin1String(key)),
                     m_file.value(QString(), QLatin1String(key)));
    }

    // Those in the file are relative to its own folder.
    QString path(const QString& given, const char* variable, const char* key) const
    {
        const auto resolved = [&](const QString& profile) {
            const QString text = m_file.value(profile, QLatin1String(key));
            return text.isEmpty() ? text : QFileInfo(m_file.path()).dir().absoluteFilePath(text);
        };
        return first(given, variable, resolved(m_profile), resolved(QString()));
    }

private:
    QString first(const QString& given, const char* variable, const QString& ofProfile,
                  const QString& ofAll) const
    {
        const QString fromVariable = variable == nullptr ? QString() : QString::fromUtf8(qgetenv(variable));
        return m_isProfileNamed ? firstGiven({given, ofProfile, fromVariable, ofAll})
                                : firstGiven({given, fromVariable, ofProfile, ofAll});
    }

    const ConfigurationFile& m_file;
    QString m_profile;
    bool m_isProfileNamed;
};

QString textOf(Setting setting, const QString& given, const Sources& sources)
{
    const SettingNames names = namesOf(setting);
    const bool isPath = setting == Setting::TokenFile;
    return isPath ? sources.path(given, names.variable, names.key)
                  : sources.text(given, names.variable, names.key);
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
    const ConfigurationFile file = configurationFile(overrides);
    const Sources sources(overrides, file);
    Configuration configuration;
    configuration.configFile = file.path();
    configuration.profile = sources.profile();

    const QString baseApi = textOf(Setting::Address, overrides.baseApi, sources);
    if (baseApi.isEmpty()) {
        throw missingSetting(Setting::Address);
    }
    configuration.baseApi = checkedAddress(baseApi);
    const QString project = textOf(Setting::Project, overrides.project, sources);
    // A name stays out of the requests, where it would be taken for an identifier.
    (isIdentifier(project) ? configuration.project : configuration.projectName) = project;

    configuration.tokenFile = textOf(Setting::TokenFile, overrides.tokenFile, sources);
    if (configuration.tokenFile.isEmpty()) {
        throw missingSetting(Setting::TokenFile);
    }
    configuration.token = readToken(configuration.tokenFile);
    if (isReadableByOthers(configuration.tokenFile)) {
        configuration.warnings.append(
            QStringLiteral("the token file %1 can be read by other users; chmod 600 it")
                .arg(configuration.tokenFile));
    }

    configuration.deadline = checkedDeadline(sources.text(overrides.deadline, nullptr, "deadline"));
    configuration.caFile = sources.path(overrides.caFile, "RKMON_CA_FILE", "ca-file");
    if (!configuration.caFile.isEmpty() && !QFileInfo(configuration.caFile).isReadable()) {
        throw badInput(QStringLiteral("cannot read the certificates in %1").arg(configuration.caFile));
    }
    return configuration;
}

QStringList configuredProfiles(const ConfigurationOverrides& overrides)
{
    return configurationFile(overrides).profiles();
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
