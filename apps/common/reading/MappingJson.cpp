#include "reading/MappingJson.h"

#include <QJsonArray>

#include <cstdlib>

namespace {

QJsonObject columnsIn(const FileMapping& mapping)
{
    QJsonObject columns;
    for (auto at = mapping.columns.cbegin(); at != mapping.columns.cend(); ++at) {
        columns.insert(nameOf(at.key()), at->number > 0 ? QJsonValue(at->number) : QJsonValue(at->title));
    }
    return columns;
}

QJsonObject constantsIn(const FileMapping& mapping)
{
    QJsonObject constants;
    for (auto at = mapping.constants.cbegin(); at != mapping.constants.cend(); ++at) {
        constants.insert(nameOf(at.key()), at.value());
    }
    return constants;
}

QJsonObject typesIn(const FileMapping& mapping)
{
    QJsonObject types;
    for (auto at = mapping.types.cbegin(); at != mapping.types.cend(); ++at) {
        const QJsonObject withUnit{{QStringLiteral("subCategory"), at->subCategory},
                                   {QStringLiteral("unit"), at->unit.value_or(QString())}};
        types.insert(at.key(), at->unit ? QJsonValue(withUnit) : QJsonValue(at->subCategory));
    }
    return types;
}

QString offsetText(int seconds)
{
    const int minutes = std::abs(seconds) / 60;
    return QStringLiteral("%1%2:%3")
        .arg(QChar(seconds < 0 ? u'-' : u'+'))
        .arg(minutes / 60, 2, 10, QChar(u'0'))
        .arg(minutes % 60, 2, 10, QChar(u'0'));
}

} // namespace

QJsonObject jsonOf(const FileMapping& mapping)
{
    QJsonObject json;
    const auto setObject = [&](const char* member, const QJsonObject& object) {
        if (!object.isEmpty()) {
            json.insert(QLatin1String(member), object);
        }
    };
    setObject("columns", columnsIn(mapping));
    setObject("constants", constantsIn(mapping));
    setObject("types", typesIn(mapping));
    if (!mapping.ignored.isEmpty()) {
        json.insert(QLatin1String("ignore"), QJsonArray::fromStringList(mapping.ignored));
    }
    if (mapping.zone.isValid()) {
        json.insert(QLatin1String("timeZone"), QString::fromUtf8(mapping.zone.id()));
    }
    if (mapping.utcOffset) {
        json.insert(QLatin1String("utcOffset"), offsetText(*mapping.utcOffset));
    }
    if (mapping.doubledHour) {
        json.insert(QLatin1String("doubledHour"),
                    doubledHourNames().at(*mapping.doubledHour == DoubledHour::First ? 0 : 1));
    }
    if (!mapping.sheet.isEmpty()) {
        json.insert(QLatin1String("sheet"), mapping.sheet);
    }
    return json;
}
