#include "extensions/AnswerObject.h"

#include "Failure.h"

#include <QJsonArray>
#include <RKPub.h>

#include <cmath>
#include <limits>

namespace {

// Beyond it not every whole number is one of the numbers of JSON.
constexpr double largestWhole = 9007199254740992.0;

[[noreturn]] void refuseAnswer(const QString& purpose, const QString& place, const QString& what)
{
    throw Failure(FailureKind::BadAnswer,
                  QStringLiteral("cannot %1: in the answer \"%2\" is %3").arg(purpose, place, what));
}

} // namespace

AnswerObject::AnswerObject(const QString& purpose, const QJsonObject& object, const QString& place)
    : m_purpose(purpose), m_object(object), m_place(place)
{
}

bool AnswerObject::has(const char* member) const
{
    return m_object.contains(QLatin1String(member));
}

QString AnswerObject::text(const char* member) const
{
    return require(member, QJsonValue::String, "not a text").toString();
}

QString AnswerObject::identifier(const char* member) const
{
    const QString text = this->text(member);
    if (text.isEmpty()) {
        refuse(member, QStringLiteral("empty"));
    }
    return text;
}

std::optional<QString> AnswerObject::textOrNull(const char* member) const
{
    return isNull(member) ? std::nullopt : std::make_optional(text(member));
}

QStringList AnswerObject::texts(const char* member) const
{
    constexpr const char* what = "not a list of texts";
    QStringList texts;
    const QJsonArray elements = require(member, QJsonValue::Array, what).toArray();
    for (const QJsonValue& element : elements) {
        if (!element.isString()) {
            refuse(member, QLatin1String(what));
        }
        texts.append(element.toString());
    }
    return texts;
}

bool AnswerObject::flag(const char* member) const
{
    return require(member, QJsonValue::Bool, "neither true nor false").toBool();
}

double AnswerObject::number(const char* member) const
{
    return require(member, QJsonValue::Double, "not a number").toDouble();
}

std::optional<double> AnswerObject::numberOrNull(const char* member) const
{
    return isNull(member) ? std::nullopt : std::make_optional(number(member));
}

qint64 AnswerObject::integer(const char* member) const
{
    const double value = number(member);
    if (value != std::trunc(value) || std::abs(value) > largestWhole) {
        refuse(member, QStringLiteral("not a whole number"));
    }
    return static_cast<qint64>(value);
}

qint32 AnswerObject::smallInteger(const char* member) const
{
    const qint64 value = integer(member);
    if (value < std::numeric_limits<qint32>::min() || value > std::numeric_limits<qint32>::max()) {
        refuse(member, QStringLiteral("too large"));
    }
    return static_cast<qint32>(value);
}

std::optional<qint32> AnswerObject::smallIntegerOrNull(const char* member) const
{
    return isNull(member) ? std::nullopt : std::make_optional(smallInteger(member));
}

QDateTime AnswerObject::time(const char* member) const
{
    const QDateTime time = RKPub::getDateTimeByQString(text(member));
    if (!time.isValid()) {
        refuse(member, QStringLiteral("not a time"));
    }
    return time;
}

QDateTime AnswerObject::timeOrEmpty(const char* member) const
{
    return text(member).isEmpty() ? QDateTime() : time(member);
}

QList<AnswerObject> AnswerObject::objects(const char* member) const
{
    return objectsOf(m_purpose, require(member, QJsonValue::Array, "not a list").toArray(), placeOf(member));
}

QJsonValue AnswerObject::value(const char* member) const
{
    if (!has(member)) {
        refuse(member, QStringLiteral("missing"));
    }
    return m_object.value(QLatin1String(member));
}

void AnswerObject::refuse(const char* member, const QString& what) const
{
    refuseAnswer(m_purpose, placeOf(member), what);
}

QJsonValue AnswerObject::require(const char* member, QJsonValue::Type type, const char* what) const
{
    const QJsonValue value = this->value(member);
    if (value.type() != type) {
        refuse(member, QLatin1String(what));
    }
    return value;
}

bool AnswerObject::isNull(const char* member) const
{
    return value(member).isNull();
}

QString AnswerObject::placeOf(const char* member) const
{
    const QString name = QLatin1String(member);
    return m_place.isEmpty() ? name : m_place + QLatin1Char('.') + name;
}

QList<AnswerObject> objectsOf(const QString& purpose, const QJsonArray& array, const QString& place)
{
    QList<AnswerObject> objects;
    objects.reserve(array.size());
    for (const QJsonValue& element : array) {
        const QString itsPlace = QStringLiteral("%1[%2]").arg(place).arg(objects.size());
        if (!element.isObject()) {
            refuseAnswer(purpose, itsPlace, QStringLiteral("not an object"));
        }
        objects.append(AnswerObject(purpose, element.toObject(), itsPlace));
    }
    return objects;
}
