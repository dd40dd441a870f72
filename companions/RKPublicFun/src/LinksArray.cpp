#include "RKPub.h"

namespace RKPub {

namespace {

const QLatin1String relationKey("type");
const QLatin1String identifierKey("rId");

} // namespace

QMap<QString, QStringList> jsonArrayToLinksEntity(const QJsonArray& links)
{
    QMap<QString, QStringList> entity;
    for (const QJsonValue& link : links) {
        const QJsonObject object = link.toObject();
        const QJsonValue relation = object.value(relationKey);
        if (!relation.isString()) {
            continue;
        }
        QStringList& identifiers = entity[relation.toString()];
        const QJsonValue identifier = object.value(identifierKey);
        if (identifier.isString()) {
            identifiers.append(identifier.toString());
        }
    }
    return entity;
}

QJsonArray linksEntityToJsonArray(const QMap<QString, QStringList>& links)
{
    QJsonArray array;
    for (auto link = links.constBegin(); link != links.constEnd(); ++link) {
        QJsonObject object{{relationKey, link.key()}};
        if (link.value().isEmpty()) {
            array.append(object);
        }
        for (const QString& identifier : link.value()) {
            object.insert(identifierKey, identifier);
            array.append(object);
        }
    }
    return array;
}

} // namespace RKPub
