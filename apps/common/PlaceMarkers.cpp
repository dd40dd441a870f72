#include "PlaceMarkers.h"

#include "Failure.h"

#include <QRegularExpression>

namespace markers {

namespace {

// A pattern can name the character by its code.
QString withoutPercentSigns(const QString& pattern)
{
    const QLatin1String code("\\x25");
    QString result;
    bool isQuoted = false; // between \Q and \E
    for (int i = 0; i < pattern.size(); ++i) {
        const QChar character = pattern.at(i);
        const QChar next = i + 1 < pattern.size() ? pattern.at(i + 1) : QChar();
        if (character == QLatin1Char('%')) {
            result += isQuoted ? QStringLiteral("\\E\\x25\\Q") : QString(code);
        } else if (character == QLatin1Char('\\') && isQuoted) {
            isQuoted = next != QLatin1Char('E');
            result += character;
        } else if (character == QLatin1Char('\\') && next == QLatin1Char('%')) {
            result += code;
            ++i;
        } else if (character == QLatin1Char('\\') && !next.isNull()) {
            isQuoted = next == QLatin1Char('Q');
            result += character;
            result += next;
            ++i;
        } else {
            result += character;
        }
    }
    return result;
}

} // namespace

bool areIn(const QString& text)
{
    static const QRegularExpression marker(QStringLiteral("%L?\\d"),
                                           QRegularExpression::UseUnicodePropertiesOption);
    return marker.match(text).hasMatch();
}

QString keptOutOf(const QString& pattern)
{
    return areIn(pattern) ? withoutPercentSigns(pattern) : pattern;
}

QString exactPattern(const QString& text)
{
    return QStringLiteral("(?-i)\\A%1\\z").arg(withoutPercentSigns(QRegularExpression::escape(text)));
}

QString requireNone(const QString& text, const char* what)
{
    if (areIn(text)) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1: \"%2\" cannot be asked for, as it holds a percent sign "
                                     "and a digit")
                          .arg(QLatin1String(what), text));
    }
    return text;
}

} // namespace markers
