#include "DisplayText.h"

#include <QVector>

#include <utf8proc.h>

#include <algorithm>

namespace display {

namespace {

constexpr QChar ellipsis(0x2026);

bool isBidirectionalControl(uint character)
{
    return character == 0x061C || character == 0x200E || character == 0x200F ||
           (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

bool steersTerminal(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Surrogate: // half a character: cannot be written in UTF-8
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return isBidirectionalControl(character);
    }
}

QString escapeSequence(uint character)
{
    switch (character) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        break;
    }
    constexpr int hexadecimal = 16;
    const QChar zero = QLatin1Char('0');
    return character <= 0xFF ? QStringLiteral("\\x%1").arg(character, 2, hexadecimal, zero)
                             : QStringLiteral("\\u%1").arg(character, 4, hexadecimal, zero);
}

int cellsOf(uint character)
{
    return utf8proc_charwidth(static_cast<utf8proc_int32_t>(character));
}

} // namespace

QString escaped(const QString& text)
{
    QString result;
    result.reserve(text.size());
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        if (steersTerminal(character)) {
            result += escapeSequence(character);
        } else {
            result += QString::fromUcs4(&character, 1);
        }
    }
    return result;
}

int width(const QString& text)
{
    int cells = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        cells += cellsOf(character);
    }
    return cells;
}

QString truncated(const QString& text, int cells)
{
    if (width(text) <= cells) {
        return text;
    }
    if (cells < 1) {
        return QString();
    }
    QString result;
    int used = 1; // the ellipsis
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        used += cellsOf(character);
        if (used > cells) {
            break;
        }
        result += QString::fromUcs4(&character, 1);
    }
    return result + ellipsis;
}

QString padded(const QString& text, int cells)
{
    return text + QString(std::max(0, cells - width(text)), QLatin1Char(' '));
}

} // namespace display
