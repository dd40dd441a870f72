#pragma once

#include <QChar>
#include <QString>

#include <optional>

/// The fields of a reading as a file writes them. Each function returns what is wrong, in words; empty:
/// nothing.
namespace values {

/// Not empty, without control characters.
QString readName(const QString& text, QString& name);

/// A number, made the shortest decimal text so that 2.5 and 2,50 are one depth; empty stays empty.
QString readDepth(const QString& text, QChar decimalSign, QString& depth);

/// A whole number from 0 to 2147483647.
QString readCount(const QString& text, qint32& count);

/// A finite number without thousands separators.
QString readValue(const QString& text, QChar decimalSign, double& value);

/// The same, or nothing for an empty text.
QString readInitialValue(const QString& text, QChar decimalSign, std::optional<double>& value);

QString readTimeFlag(const QString& text, QString& timeFlag);

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
