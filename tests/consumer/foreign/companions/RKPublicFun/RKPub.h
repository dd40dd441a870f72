#pragma once

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace RKPub {

/// Times of any year as "31.12.2015 23:59:58", in UTC; an invalid one as "no time".
QString getQStringByDateTime(const QDateTime& dateTime);
QDateTime getDateTimeByQString(const QString& text);
/// Texts only, in capitals.
QStringList getStrListFromVarList(const QList<QVariant>& values);
/// One object per relation: {"relation": name, "identifiers": [...]}.
QMap<QString, QStringList> jsonArrayToLinksEntity(const QJsonArray& links);
QJsonArray linksEntityToJsonArray(const QMap<QString, QStringList>& links);
void removeCommonJsonValue(const QJsonObject& before, QJsonObject& after);

} // namespace RKPub
