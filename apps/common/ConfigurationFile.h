#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

/// A configuration file: lines "key = value", which hold for every profile, sections "[profile NAME]" with
/// lines of the same form, which hold for that one and go before the others, empty lines, and comments that
/// begin with "#" or ";". Every line is checked, and kept as it is when a setting is changed.
class ConfigurationFile
{
public:
    /// Reads the file at `path`; when it need not be there and is not, an empty one. Throws a Failure
    /// (BadInput) that names the line when one is not understood.
    static ConfigurationFile read(const QString& path, bool mustExist);

    /// As read(), of the content of a file at `path`.
    ConfigurationFile(QString path, const QByteArray& content);

    const QString& path() const { return m_path; }
    QStringList profiles() const;

    /// What stands for `key` in the section of `profile`, or before all sections when that is empty; empty
    /// when nothing does.
    QString value(const QString& profile, const QString& key) const;

    /// Sets `key` in the section of `profile`, which must be there, or before all sections.
    void setValue(const QString& profile, const QString& key, const QString& value);

    /// Replaces the file, which is made with its folder where there is none. Throws a Failure when that does
    /// not work; the file is then as it was.
    void write() const;

private:
    struct Setting
    {
        QString profile;
        QString key;
        QString value;
        int line;
    };

    struct Profile
    {
        QString name;
        int line;
    };

    void readLine(const QString& text);
    void beginProfile(const QString& text);
    void addSetting(const QString& text);
    const Setting* find(const QString& profile, const QString& key) const;
    int lastLineOf(const QString& profile) const;
    QByteArray content() const;
    [[noreturn]] void refuseLine(const QString& reason) const;

    QString m_path;
    QStringList m_lines;
    QVector<Profile> m_profiles;
    QVector<Setting> m_settings;
};
