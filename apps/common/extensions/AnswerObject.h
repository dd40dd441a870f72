#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class QJsonArray;

/// An object of an answer, read member by member. A member that is missing or of another type than it is read
/// as throws a Failure (BadAnswer), which names it: "[3].timeZone".
class AnswerObject
{
public:
    /// `purpose` completes "cannot ..."; `place` is where in the answer it stands, empty for the answer
    /// itself.
    AnswerObject(const QString& purpose, const QJsonObject& object, const QString& place = {});

    bool has(const char* member) const;

    QString text(const char* member) const;
    /// Not empty.
    QString identifier(const char* member) const;
    std::optional<QString> textOrNull(const char* member) const;
    QStringList texts(const char* member) const;
    bool flag(const char* member) const;
    double number(const char* member) const;
    std::optional<double> numberOrNull(const char* member) const;
    qint64 integer(const char* member) const;
    qint32 smallInteger(const char* member) const;
    std::optional<qint32> smallIntegerOrNull(const char* member) const;
    /// With its offset.
    QDateTime time(const char* member) const;
    /// The same; a null time for an empty text.
    QDateTime timeOrEmpty(const char* member) const;
    QList<AnswerObject> objects(const char* member) const;
    /// Anything, null too.
    QJsonValue value(const char* member) const;

    /// Throws the failure of a member that is not what it should be: `what` completes `"member" is `.
    [[noreturn]] void refuse(const char* member, const QString& what) const;

private:
    QJsonValue require(const char* member, QJsonValue::Type type, const char* what) const;
    bool isNull(const char* member) const;
    QString placeOf(const char* member) const;

    QString m_purpose;
    QJsonObject m_object;
    QString m_place;
};

/// The elements of an array as objects. Throws a Failure (BadAnswer) when one is something else.
QList<AnswerObject> objectsOf(const QString& purpose, const QJsonArray& array, const QString& place = {});
