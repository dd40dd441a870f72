#include "CommaSeparatedValues.h"

#include <algorithm>

namespace csv {

namespace {

bool needsQuotes(const QString& field)
{
    if (field.isEmpty()) {
        return false;
    }
    const auto isSpecial = [](QChar character) {
        return character == QLatin1Char(',') || character == QLatin1Char('"') ||
               character == QLatin1Char('\r') || character == QLatin1Char('\n');
    };
    return field.front().isSpace() || field.back().isSpace() ||
           std::any_of(field.cbegin(), field.cend(), isSpecial);
}

QString quoted(QString field)
{
    const QString quote(QLatin1Char('"'));
    return quote + field.replace(quote, quote + quote) + quote;
}

} // namespace

QString record(const QStringList& fields)
{
    QStringList encoded;
    encoded.reserve(fields.size());
    for (const QString& field : fields) {
        encoded.append(needsQuotes(field) ? quoted(field) : field);
    }
    // Left bare, a record of one empty field would be an empty line, which readers skip.
    if (encoded.size() == 1 && encoded.constFirst().isEmpty()) {
        encoded.first() = quoted(QString());
    }
    return encoded.join(QLatin1Char(',')) + QLatin1String("\r\n");
}

} // namespace csv
