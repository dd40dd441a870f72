#include "JsonNode.h"

#include "Failure.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>
#include <limits>

namespace {

bool isFilledText(const QJsonValue& value)
{
    return value.isString() && !value.toString().trimmed().isEmpty();
}

QString choiceOf(const QStringList& texts)
{
    return texts.isEmpty() ? QStringLiteral("one of the list, which is empty")
                           : QStringLiteral("one of ") + texts.join(QStringLiteral(", "));
}

} // namespace

JsonNode::JsonNode(const QString& file, const QString& place, const QJsonValue& value)
    : m_file(file), m_place(place)
{
    if (!value.isObject()) {
        fail(QStringLiteral("must be an object"));
    }
    m_object = value.toObject();
}

JsonNode JsonNode::rootOf(const QString& path, const QByteArray& content)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(content, &error);
    if (error.error != QJsonParseError::NoError) {
        const auto line = content.left(error.offset).count('\n') + 1;
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1:%2: not JSON: %3").arg(path).arg(line).arg(error.errorString()));
    }
    return {path, QString(), document.isObject() ? QJsonValue(document.object()) : QJsonValue()};
}

QString JsonNode::text(const char* member) const
{
    if (!isFilledText(value(member))) {
        failAt(member, QStringLiteral("must be a text that is not empty"));
    }
    return value(member).toString();
}

QString JsonNode::textOr(const char* member, const QString& otherwise) const
{
    return has(member) ? text(member) : otherwise;
}

QString JsonNode::oneOf(const char* member, const QStringList& known) const
{
    const QString chosen = text(member);
    if (!known.contains(chosen)) {
        failAt(member, QStringLiteral("\"%1\" must be %2").arg(chosen, choiceOf(known)));
    }
    return chosen;
}

QStringList JsonNode::textOrTexts(const char* member) const
{
    return value(member).isString() ? QStringList{text(member)} : texts(member);
}

QStringList JsonNode::texts(const char* member) const
{
    QStringList result;
    const QJsonArray elements = array(member);
    for (const QJsonValue& element : elements) {
        if (!isFilledText(element)) {
            failAt(member, QStringLiteral("must be a list of texts that are not empty"));
        }
        result.append(element.toString());
    }
    return result;
}

double JsonNode::limit(const char* member) const
{
    const double number = value(member).toDouble(0.0);
    if ((has(member) && !value(member).isDouble()) || number < 0.0 || !std::isfinite(number)) {
        failAt(member, QStringLiteral("must be a number that is not negative"));
    }
    return number;
}

int JsonNode::wholeOr(const char* member, int otherwise) const
{
    const double number = value(member).toDouble(has(member) ? -1.0 : otherwise);
    if (number < 0.0 || number > std::numeric_limits<int>::max() || std::floor(number) != number) {
        failAt(member, QStringLiteral("must be a whole number that is not negative"));
    }
    return static_cast<int>(number);
}

bool JsonNode::flagOr(const char* member, bool otherwise) const
{
    if (has(member) && !value(member).isBool()) {
        failAt(member, QStringLiteral("must be true or false"));
    }
    return value(member).toBool(otherwise);
}

QList<JsonNode> JsonNode::nodes(const char* member) const
{
    QList<JsonNode> result;
    const QJsonArray elements = array(member);
    for (const QJsonValue& element : elements) {
        result.append(
            JsonNode(m_file, QStringLiteral("%1[%2]").arg(placeOf(member)).arg(result.size()), element));
    }
    return result;
}

JsonNode JsonNode::node(const char* member) const
{
    return {m_file, placeOf(member), value(member)};
}

void JsonNode::allowOnly(const QStringList& members) const
{
    for (const QString& member : m_object.keys()) {
        if (!members.contains(member)) {
            fail(QStringLiteral("has an unknown member \"%1\"; known are %2")
                     .arg(member, members.join(QStringLiteral(", "))));
        }
    }
}

void JsonNode::fail(const QString& reason) const
{
    throw Failure(
        FailureKind::BadInput,
        QStringLiteral("%1: %2 %3").arg(m_file, m_place.isEmpty() ? QStringLiteral("it") : m_place, reason));
}

void JsonNode::failAt(const char* member, const QString& reason) const
{
    throw Failure(FailureKind::BadInput, QStringLiteral("%1: %2 %3").arg(m_file, placeOf(member), reason));
}

QString JsonNode::placeOf(const char* member) const
{
    const QString name = QString::fromUtf8(member);
    return m_place.isEmpty() ? name : m_place + QLatin1Char('.') + name;
}

QJsonArray JsonNode::array(const char* member) const
{
    if (has(member) && !value(member).isArray()) {
        failAt(member, QStringLiteral("must be a list"));
    }
    return value(member).toArray();
}
