#pragma once

#include <QChar>
#include <QDateTime>
#include <QString>

/// The fields of a reading as a file writes them. Each function returns what is wrong, in words; empty:
/// nothing.
namespace values {

/// Not empty, without control characters.
QString readName(const QString& text, QString& name);

/// A number, made the shortest decimal text so that 2.5 and 2,50 are one depth; empty stays empty.
QString readDepth(const QString& text, QChar decimalSign, QString& depth);

/// ISO 8601, the date alone included; seconds may be left out, and a space may replace the "T". A time
/// without an offset from UTC is taken to be in `utcOffset` ("+01:00"), and is refused when that is empty.
QString readTime(const QString& text, const QString& utcOffset, QDateTime& time);

/// A whole number from 0 to 2147483647.
QString readCount(const QString& text, qint32& count);

/// A finite number without thousands separators.
QString readValue(const QString& text, QChar decimalSign, double& value);

QString readTimeFlag(const QString& text, QString& timeFlag);

/// Whether `text` is a time that is refused only for want of an offset from UTC.
bool lacksOffset(const QString& text);

/// Whether `text` is an offset such as Z, +01:00 or -0330.
bool isUtcOffset(const QString& text);

/// Detects from all numbers of a file whether their decimal sign is the point or the comma.
class DecimalSignDetection
{
public:
    struct Result
    {
        QChar sign;
        /// When that is ambiguous: why, and the line that shows it.
        QString problem;
        int line = 0;
    };

    void look(const QString& number, int line);
    Result result() const;

private:
    int m_pointLine = 0; // the first line with one; 0: none
    int m_commaLine = 0;
    bool m_mayBeThousands = true;
};

} // namespace values
