#include "RKPub.h"

namespace RKPub {

namespace {
const QString format = QStringLiteral("dd.MM.yyyy HH:mm:ss");
const QString relationKey = QStringLiteral("relation");
const QString identifiersKey = QStringLiteral("identifiers");
} // namespace

QString getQStringByDateTime(const QDateTime& dateTime)
{
    return dateTime.isValid() ? dateTime.toUTC().toString(format) : QStringLiteral("no time");
}

QDateTime getDateTimeByQString(const QString& text)
{
    QDateTime dateTime = QDateTime::fromString(text, format);
    dateTime.setTimeSpec(Qt::UTC);
    return dateTime;
}

QStringList getStrListFromVarList(const QList<QVariant>& values)
{
    QStringList texts;
    for (const QVariant& value : values) {
        texts.append(value.toString().toUpper());
    }
    return texts;
}

QMap<QString, QStringList> jsonArrayToLinksEntity(const QJsonArray& links)
{
    QMap<QString, QStringList> entity;
    for (const QJsonValue& element : links) {
        const QJsonObject link = element.toObject();
        QStringList& identifiers = entity[link.value(relationKey).toString()];
        const QJsonArray array = link.value(identifiersKey).toArray();
        for (const QJsonValue& identifier : array) {
            identifiers.append(identifier.toString());
        }
    }
    return entity;
}

QJsonArray linksEntityToJsonArray(const QMap<QString, QStringList>& links)
{
    QJsonArray array;
    for (auto link = links.begin(); link != links.end(); ++link) {
        array.append(QJsonObject{{relationKey, link.key()},
                                 {identifiersKey, QJsonArray::fromStringList(link.value())}});
    }
    return array;
}

void removeCommonJsonValue(const QJsonObject& before, QJsonObject& after)
{
    for (auto member = before.begin(); member != before.end(); ++member) {
        if (after.value(member.key()) == member.value()) {
            after.remove(member.key());
        }
    }
}

} // namespace RKPub
