#include "reading/TimeFormatDetection.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace {

constexpr unsigned bitOf(TimeFormat format)
{
    return 1U << static_cast<unsigned>(format);
}

QList<TimeFormat> formatsOf(unsigned ways)
{
    QList<TimeFormat> formats;
    std::copy_if(timeFormats.cbegin(), timeFormats.cend(), std::back_inserter(formats),
                 [&](TimeFormat format) { return (ways & bitOf(format)) != 0; });
    return formats;
}

// "2024-03-01" takes no second look: four digits are the year.
bool beginsWithYear(const QString& text)
{
    constexpr int yearDigits = 4;
    return text.size() > yearDigits && !text[yearDigits].isDigit() &&
           std::all_of(text.cbegin(), text.cbegin() + yearDigits,
                       [](QChar character) { return character >= u'0' && character <= u'9'; });
}

// "a", "a or b", "a, b or c".
QString alternatives(const QStringList& texts)
{
    return texts.size() < 2 ? texts.join(QString())
                            : texts.mid(0, texts.size() - 1).join(QStringLiteral(", ")) +
                                  QStringLiteral(" or ") + texts.last();
}

// The decimal sign of a number; a time of another form has no use for it.
QChar decimalSignOf(const QString& text)
{
    return text.contains(u',') ? u',' : u'.';
}

unsigned waysOf(const QString& text)
{
    unsigned ways = 0;
    WrittenTime time;
    for (const TimeFormat format : timeFormats) {
        if (readWrittenTime(text, format, decimalSignOf(text), time) == TimeReading::Done) {
            ways |= bitOf(format);
        }
    }
    return ways;
}

QString ambiguity(const QString& text, const QList<TimeFormat>& ways)
{
    QStringList readings;
    WrittenTime time;
    for (const TimeFormat way : ways) {
        readWrittenTime(text, way, decimalSignOf(text), time);
        readings.append(QStringLiteral("%1 (%2)").arg(nameOf(way), time.date.toString(Qt::ISODate)));
    }
    return QStringLiteral("every time of the file can be read in several ways, \"%1\" as %2: which is it?")
        .arg(text, alternatives(readings));
}

} // namespace

TimeFormatDetection::TimeFormatDetection(const QList<TimeFormat>& ways)
{
    if (!ways.isEmpty()) {
        m_possible = 0;
    }
    for (const TimeFormat way : ways) {
        m_possible |= bitOf(way);
    }
}

void TimeFormatDetection::look(const QString& text, int line)
{
    if (m_hasYearFirst && beginsWithYear(text)) {
        return;
    }
    const Ways ways = waysOf(text) & m_possible;
    m_hasYearFirst = m_hasYearFirst || (ways == bitOf(TimeFormat::YearMonthDay) && beginsWithYear(text));
    const bool isKnown = std::any_of(m_examples.cbegin(), m_examples.cend(),
                                     [&](const Example& example) { return example.ways == ways; });
    if (ways != 0 && !isKnown) {
        m_examples.append({ways, text, line});
    }
}

TimeFormatDetection::Result TimeFormatDetection::result() const
{
    // A year of four digits before month and day has no other reading: what does not fit it is a bad row.
    if (m_examples.isEmpty() || m_hasYearFirst) {
        return {};
    }
    Ways common = ~Ways(0);
    for (const Example& example : m_examples) {
        common &= example.ways;
    }
    const QList<TimeFormat> formats = formatsOf(common);
    if (formats.isEmpty()) {
        return contradiction();
    }
    if (formats.size() == 1) {
        return {formats.first(), QString(), 0, {}};
    }
    const Example& first = m_examples.constFirst();
    return {TimeFormat::YearMonthDay, ambiguity(first.text, formats), first.line, formats};
}

TimeFormatDetection::Result TimeFormatDetection::contradiction() const
{
    Example first = m_examples.constFirst();
    Example second = m_examples.constLast();
    for (const Example& one : m_examples) {
        const auto other = std::find_if(m_examples.cbegin(), m_examples.cend(), [&](const Example& example) {
            return example.line > one.line && (example.ways & one.ways) == 0;
        });
        if (other != m_examples.cend()) {
            first = one;
            second = *other;
            break;
        }
    }
    return {TimeFormat::YearMonthDay,
            QStringLiteral("no one way reads both the time \"%1\" (here) and \"%2\" (line %3)")
                .arg(second.text, first.text)
                .arg(first.line),
            second.line, formatsOf(first.ways | second.ways)};
}
