#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

/// An object of a JSON file that people write, read member by member. What is wrong with a member is a
/// Failure (BadInput) that names its place: "site.json: files[2].monitoring must be ...".
class JsonNode
{
public:
    /// The object that `content` is, of the file at `path`.
    static JsonNode rootOf(const QString& path, const QByteArray& content);

    // Members are UTF-8.
    bool has(const char* member) const { return m_object.contains(QString::fromUtf8(member)); }
    QStringList members() const { return m_object.keys(); }
    QJsonValue value(const char* member) const { return m_object.value(QString::fromUtf8(member)); }

    QString text(const char* member) const;
    QString textOr(const char* member, const QString& otherwise) const;
    /// A text that is among `known`.
    QString oneOf(const char* member, const QStringList& known) const;
    /// One text, or a list of them; empty when it is not there.
    QStringList textOrTexts(const char* member) const;
    QStringList texts(const char* member) const;
    /// Not negative; 0 when it is not there.
    double limit(const char* member) const;
    /// Whole and not negative; `otherwise` when it is not there.
    int wholeOr(const char* member, int otherwise) const;
    bool flagOr(const char* member, bool otherwise) const;

    QList<JsonNode> nodes(const char* member) const;
    JsonNode node(const char* member) const;

    /// A misspelt member would otherwise have no effect, silently.
    void allowOnly(const QStringList& members) const;

    [[noreturn]] void fail(const QString& reason) const;
    [[noreturn]] void failAt(const char* member, const QString& reason) const;

private:
    JsonNode(const QString& file, const QString& place, const QJsonValue& value);

    QString placeOf(const char* member) const;
    QJsonArray array(const char* member) const;

    QString m_file;
    QString m_place;
    QJsonObject m_object;
};
