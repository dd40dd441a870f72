#include "reading/MeasuredValues.h"

#include "PointNames.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace values {

namespace {

bool holdsControlCharacter(const QString& text)
{
    return std::any_of(text.cbegin(), text.cend(),
                       [](QChar character) { return character.category() == QChar::Other_Control; });
}

// Passes over digits from `index` on; returns how many.
int skipDigits(const QString& text, int& index)
{
    const int begin = index;
    while (index < text.size() && text[index] >= QLatin1Char('0') && text[index] <= QLatin1Char('9')) {
        ++index;
    }
    return index - begin;
}

void skipSign(const QString& text, int& index)
{
    if (index < text.size() && (text[index] == QLatin1Char('-') || text[index] == QLatin1Char('+'))) {
        ++index;
    }
}

// Digits with at most one decimal sign, and perhaps an exponent; no other way to write a number.
bool isNumber(const QString& text, QChar decimalSign)
{
    int index = 0;
    skipSign(text, index);
    int digits = skipDigits(text, index);
    if (index < text.size() && text[index] == decimalSign) {
        digits += skipDigits(text, ++index);
    }
    if (digits == 0) {
        return false;
    }
    if (index < text.size() && text[index].toLower() == QLatin1Char('e')) {
        skipSign(text, ++index);
        if (skipDigits(text, index) == 0) {
            return false;
        }
    }
    return index == text.size();
}

QString readNumber(const char* what, QString text, QChar decimalSign, double& number)
{
    if (text.isEmpty()) {
        return QStringLiteral("the %1 is empty").arg(QLatin1String(what));
    }
    if (!isNumber(text, decimalSign)) {
        const QString problem = QStringLiteral("%1 \"%2\" is not a number").arg(QLatin1String(what), text);
        const QLatin1Char other(decimalSign == QLatin1Char(',') ? '.' : ',');
        return isNumber(text, other)
                   ? problem + QStringLiteral(": the decimal sign of this file is \"%1\"").arg(decimalSign)
                   : problem;
    }
    number = text.replace(decimalSign, QLatin1Char('.')).toDouble();
    return std::isfinite(number)
               ? QString()
               : QStringLiteral("%1 \"%2\" is too large a number").arg(QLatin1String(what), text);
}

} // namespace

QString readName(const QString& text, QString& name)
{
    if (text.isEmpty()) {
        return QStringLiteral("the name is empty");
    }
    if (holdsControlCharacter(text)) {
        return QStringLiteral("the name holds a control character");
    }
    name = text;
    return QString();
}

QString readDepth(const QString& text, QChar decimalSign, QString& depth)
{
    depth.clear();
    if (text.isEmpty()) {
        return QString();
    }
    double number = 0.0;
    const QString problem = readNumber("depth", text, decimalSign, number);
    if (problem.isEmpty()) {
        depth = depthText(number);
    }
    return problem;
}

QString readCount(const QString& text, qint32& count)
{
    bool isWhole = false;
    count = text.toInt(&isWhole);
    const bool isPlain = !text.isEmpty() && text.front() != QLatin1Char('+');
    return isWhole && isPlain && count >= 0
               ? QString()
               : QStringLiteral("count \"%1\" is not a whole number from 0 to %2")
                     .arg(text)
                     .arg(std::numeric_limits<qint32>::max());
}

QString readValue(const QString& text, QChar decimalSign, double& value)
{
    return readNumber("value", text, decimalSign, value);
}

QString readInitialValue(const QString& text, QChar decimalSign, std::optional<double>& value)
{
    value.reset();
    if (text.isEmpty()) {
        return QString();
    }
    double number = 0.0;
    const QString problem = readNumber("initial value", text, decimalSign, number);
    if (problem.isEmpty()) {
        value = number;
    }
    return problem;
}

QString readTimeFlag(const QString& text, QString& timeFlag)
{
    if (holdsControlCharacter(text)) {
        return QStringLiteral("the timeFlag holds a control character");
    }
    timeFlag = text;
    return QString();
}

void DecimalSignDetection::look(const QString& number, int line)
{
    static const QRegularExpression thousands(QStringLiteral("\\A[+-]?[1-9]\\d{0,2},\\d{3}\\z"));
    const QLatin1Char point('.');
    const QLatin1Char comma(',');
    if (m_pointLine == 0 && number.contains(point) && isNumber(number, point)) {
        m_pointLine = line;
    }
    if (!number.contains(comma) || !isNumber(number, comma)) {
        return;
    }
    if (m_commaLine == 0) {
        m_commaLine = line;
    }
    m_mayBeThousands = m_mayBeThousands && thousands.match(number).hasMatch();
}

DecimalSignDetection::Result DecimalSignDetection::result() const
{
    const QLatin1Char point('.');
    const QLatin1Char comma(',');
    if (m_commaLine == 0) {
        return {point, QString(), 0};
    }
    if (m_pointLine != 0) {
        return {
            point,
            QStringLiteral("the file has numbers with a comma (as here) and with a point (line %1): which is "
                           "the decimal sign?")
                .arg(m_pointLine),
            m_commaLine};
    }
    if (m_mayBeThousands) {
        return {comma,
                QStringLiteral("the comma may be the decimal sign or separate thousands in every number of "
                               "the file: which is it?"),
                m_commaLine};
    }
    return {comma, QString(), 0};
}

} // namespace values
