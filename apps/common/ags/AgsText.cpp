#include "ags/AgsText.h"

namespace ags {

QByteArray rowText(const QString& descriptor, const QStringList& fields)
{
    QByteArray row;
    for (const QString& field : QStringList{descriptor} + fields) {
        row += (row.isEmpty() ? "\"" : ",\"") + field.toUtf8().replace('"', "\"\"") + '"';
    }
    return row + lineEnd;
}

QByteArray headText(const Head& head)
{
    return rowText(QStringLiteral("GROUP"), {head.group}) +
           rowText(QStringLiteral("HEADING"), head.headings) + rowText(QStringLiteral("UNIT"), head.units) +
           rowText(QStringLiteral("TYPE"), head.types);
}

} // namespace ags
