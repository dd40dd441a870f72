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

Failure usageFailure(const QString& message)
{
    return {ExitCode::Usage, message};
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
            throw usageFailure(QStringLiteral("cannot read the configuration file %1").arg(m_path));
        }
        if (m_settings.status() != QSettings::NoError) {
            throw usageFailure(
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
                throw usageFailure(QStringLiteral("unknown setting \"%1\" in %2; known are %3")
                                       .arg(key, m_path, known.join(QLatin1String(", "))));
            }
        }
    }

    QString m_path;
    QSettings m_settings;
};

QString variable(const char* name)
{
    return QString::fromUtf8(qgetenv(name));
}

QString firstGiven(const QString& flag, const QString& variable, const QString& setting)
{
    if (!flag.isEmpty()) {
        return flag;
    }
    return variable.isEmpty() ? setting : variable;
}

QString checkedAddress(const QString& text)
{
    // Not shown: what stands before an "@" may be a password.
    if (text.contains(QLatin1Char('@'))) {
        throw usageFailure(
            QStringLiteral("the address of the service must not hold a user name or a password; "
                           "the token file says who asks"));
    }
    const QUrl url(text, QUrl::StrictMode);
    const bool isHttp = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    // A per cent sign would be taken for a place marker of the library's URL templates.
    if (!url.isValid() || !isHttp || url.host().isEmpty() || url.hasQuery() || url.hasFragment() ||
        text.contains(QLatin1Char('%'))) {
        throw usageFailure(
            QStringLiteral("\"%1\" is not the address of a service; give one like http://127.0.0.1:8600/")
                .arg(text));
    }
    return text.endsWith(QLatin1Char('/')) ? text : text + QLatin1Char('/');
}

QString checkedProject(const QString& text)
{
    static const QRegularExpression identifier(QStringLiteral("\\A[0-9A-Za-z_-]*\\z"));
    if (!identifier.match(text).hasMatch()) {
        throw usageFailure(QStringLiteral("\"%1\" is not the identifier of a project").arg(text));
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
        throw usageFailure(
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
        throw usageFailure(QStringLiteral("cannot read the token file %1: %2").arg(path, file.errorString()));
    }
    QByteArray content = file.read(longest + 1);
    if (content.endsWith('\n')) {
        content.chop(1);
    }
    if (content.endsWith('\r')) {
        content.chop(1);
    }
    if (content.isEmpty()) {
        throw usageFailure(QStringLiteral("the token file %1 is empty").arg(path));
    }
    for (const char character : qAsConst(content)) {
        if (character <= ' ' || character > '~' || content.size() > longest) {
            throw usageFailure(
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

Failure missingSetting(const QString& meaning, const QString& flag, const QString& variable,
                       const QString& key)
{
    return usageFailure(QStringLiteral("no %1 given; use %2, set %3, or write \"%4 = ...\" into %5")
                            .arg(meaning, flag, variable, key, usualConfigFile()));
}

Configuration readConfiguration(const ConfigurationFlags& flags)
{
    const ConfigFile file(flags.configFile);
    Configuration configuration;

    const QString baseApiKey = QStringLiteral("base-api");
    const QString baseApi = firstGiven(flags.baseApi, variable("RKMON_BASE_API"), file.value(baseApiKey));
    if (baseApi.isEmpty()) {
        throw missingSetting(QStringLiteral("address of the service"), QStringLiteral("--base-api"),
                             QStringLiteral("RKMON_BASE_API"), baseApiKey);
    }
    configuration.baseApi = checkedAddress(baseApi);

    configuration.project = checkedProject(
        firstGiven(flags.project, variable("RKMON_PROJECT"), file.value(QStringLiteral("project"))));

    const QString tokenFileKey = QStringLiteral("token-file");
    configuration.tokenFile =
        firstGiven(flags.tokenFile, variable("RKMON_TOKEN_FILE"), file.path(tokenFileKey));
    if (configuration.tokenFile.isEmpty()) {
        throw missingSetting(QStringLiteral("token file"), QStringLiteral("--token-file"),
                             QStringLiteral("RKMON_TOKEN_FILE"), tokenFileKey);
    }
    configuration.token = readToken(configuration.tokenFile);
    if (isReadableByOthers(configuration.tokenFile)) {
        configuration.warnings.append(
            QStringLiteral("the token file %1 can be read by other users; chmod 600 it")
                .arg(configuration.tokenFile));
    }

    configuration.deadline =
        checkedDeadline(firstGiven(flags.deadline, QString(), file.value(QStringLiteral("deadline"))));

    configuration.caFile = firstGiven(flags.caFile, QString(), file.path(QStringLiteral("ca-file")));
    if (!configuration.caFile.isEmpty() && !QFileInfo(configuration.caFile).isReadable()) {
        throw usageFailure(QStringLiteral("cannot read the certificates in %1").arg(configuration.caFile));
    }
    return configuration;
}

void applyConfiguration(const Configuration& configuration)
{
    RKBaseApi::GetInstance().setBaseApi(configuration.baseApi);
    GetSoftCache()->setProjectId(configuration.project);
    NetworkManager& network = NetworkManager::instance();
    if (!network.setBearerToken(configuration.token)) {
        throw usageFailure(
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
