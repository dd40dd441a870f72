#include "ConfigurationFile.h"

#include "Failure.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <utility>

namespace {

const QString defaultProfileKey = QStringLiteral("default-profile");

QStringList knownKeys()
{
    return {QStringLiteral("base-api"), QStringLiteral("project"), QStringLiteral("token-file"),
            QStringLiteral("deadline"), QStringLiteral("ca-file"), defaultProfileKey};
}

bool isComment(const QString& line)
{
    return line.isEmpty() || line.startsWith(QLatin1Char('#')) || line.startsWith(QLatin1Char(';'));
}

// Quotes around a whole value are no part of it.
QString unquoted(const QString& value)
{
    const QChar quote = QLatin1Char('"');
    const bool isQuoted = value.size() > 1 && value.startsWith(quote) && value.endsWith(quote);
    return isQuoted ? value.mid(1, value.size() - 2) : value;
}

} // namespace

ConfigurationFile ConfigurationFile::read(const QString& path, bool mustExist)
{
    const QFileInfo info(path);
    if (!info.exists() && !mustExist) {
        return {path, QByteArray()};
    }
    QFile file(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly)) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("cannot read the configuration file %1").arg(path));
    }
    return {path, file.readAll()};
}

ConfigurationFile::ConfigurationFile(QString path, const QByteArray& content) : m_path(std::move(path))
{
    QString text = QString::fromUtf8(content.constData(), content.size()); // without a byte-order mark
    if (text.endsWith(QLatin1Char('\n'))) {
        text.chop(1);
    }
    if (text.isEmpty()) {
        return;
    }
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        m_lines.append(line);
        readLine(line.trimmed());
    }
}

QStringList ConfigurationFile::profiles() const
{
    QStringList names;
    for (const Profile& profile : m_profiles) {
        names.append(profile.name);
    }
    return names;
}

void ConfigurationFile::refuseLine(const QString& reason) const
{
    throw Failure(FailureKind::BadInput,
                  QStringLiteral("%1:%2: %3").arg(m_path).arg(m_lines.size()).arg(reason));
}

void ConfigurationFile::readLine(const QString& text)
{
    if (text.contains(QChar::ReplacementCharacter) || text.contains(QChar::Null)) {
        refuseLine(QStringLiteral("the line is not UTF-8"));
    }
    if (isComment(text)) {
        return;
    }
    if (text.startsWith(QLatin1Char('['))) {
        beginProfile(text);
    } else {
        addSetting(text);
    }
}

void ConfigurationFile::beginProfile(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral("\\A\\[\\s*profile\\s+([^\\[\\]]*[^\\[\\]\\s])\\s*\\]\\z"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        refuseLine(QStringLiteral("\"%1\" is no section; they are called [profile NAME]").arg(text));
    }
    const QString name = match.captured(1);
    if (profiles().contains(name)) {
        refuseLine(QStringLiteral("the profile \"%1\" is there already").arg(name));
    }
    m_profiles.append({name, m_lines.size()});
}

void ConfigurationFile::addSetting(const QString& text)
{
    const QString profile = m_profiles.isEmpty() ? QString() : m_profiles.constLast().name;
    const int equals = text.indexOf(QLatin1Char('='));
    if (equals < 0) {
        refuseLine(QStringLiteral("\"%1\" is not understood; a line is \"key = value\", [profile NAME] or a "
                                  "comment that begins with #")
                       .arg(text));
    }
    const QString key = text.left(equals).trimmed();
    QStringList known = knownKeys();
    if (!profile.isEmpty()) {
        known.removeAll(defaultProfileKey);
    }
    if (!known.contains(key)) {
        refuseLine(
            QStringLiteral("unknown setting \"%1\"; known are %2").arg(key, known.join(QLatin1String(", "))));
    }
    if (const Setting* earlier = find(profile, key)) {
        refuseLine(QStringLiteral("\"%1\" is set in line %2 already").arg(key).arg(earlier->line));
    }
    m_settings.append({profile, key, unquoted(text.mid(equals + 1).trimmed()), m_lines.size()});
}

const ConfigurationFile::Setting* ConfigurationFile::find(const QString& profile, const QString& key) const
{
    for (const Setting& setting : m_settings) {
        if (setting.profile == profile && setting.key == key) {
            return &setting;
        }
    }
    return nullptr;
}

QString ConfigurationFile::value(const QString& profile, const QString& key) const
{
    const Setting* setting = find(profile, key);
    return setting == nullptr ? QString() : setting->value;
}

// That of its last setting, so that what is said of the next section stays with that; 0 when there is none.
int ConfigurationFile::lastLineOf(const QString& profile) const
{
    int line = 0;
    for (const Profile& section : m_profiles) {
        line = section.name == profile ? section.line : line;
    }
    for (const Setting& setting : m_settings) {
        line = setting.profile == profile ? setting.line : line;
    }
    return line;
}

QByteArray ConfigurationFile::content() const
{
    return m_lines.isEmpty() ? QByteArray() : (m_lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
}

void ConfigurationFile::setValue(const QString& profile, const QString& key, const QString& value)
{
    ConfigurationFile changed = *this;
    QString text = QStringLiteral("%1 = %2").arg(key, value);
    if (!m_lines.isEmpty() && m_lines.constFirst().endsWith(QLatin1Char('\r'))) {
        text += QLatin1Char('\r');
    }
    if (const Setting* setting = find(profile, key)) {
        changed.m_lines[setting->line - 1] = text;
    } else {
        changed.m_lines.insert(lastLineOf(profile), text);
    }
    *this = ConfigurationFile(m_path, changed.content());
}

void ConfigurationFile::write() const
{
    QSaveFile file(m_path);
    const QByteArray text = content();
    const bool isWritten = QDir().mkpath(QFileInfo(m_path).path()) && file.open(QIODevice::WriteOnly) &&
                           file.write(text) == text.size() && file.commit();
    if (!isWritten) {
        throw Failure(
            FailureKind::Other,
            QStringLiteral("cannot write the configuration file %1: %2").arg(m_path, file.errorString()));
    }
}
