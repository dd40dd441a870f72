#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

inline QJsonObject jsonObject(const char* text)
{
    return QJsonDocument::fromJson(text).object();
}

inline QString compact(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}
