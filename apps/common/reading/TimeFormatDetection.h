#pragma once

#include "reading/WrittenTime.h"

#include <QList>
#include <QVector>

/// Detects from all times of a file in which one way they can be read. It never chooses between two.
class TimeFormatDetection
{
public:
    struct Result
    {
        /// The way; where none of the texts is a time, that of ISO 8601.
        TimeFormat format = TimeFormat::YearMonthDay;
        /// When there are several, or none for all of them: why, and the line that shows it.
        QString problem;
        int line = 0;
        /// The ways that come into question.
        QList<TimeFormat> ways;
    };

    /// Only `ways` come into question; empty: all.
    explicit TimeFormatDetection(const QList<TimeFormat>& ways = {});

    void look(const QString& text, int line);
    Result result() const;

private:
    using Ways = unsigned; // a bit for each time format

    struct Example
    {
        Ways ways;
        QString text;
        int line;
    };

    Result contradiction() const;

    Ways m_possible = ~Ways(0);
    bool m_hasYearFirst = false;
    QVector<Example> m_examples; // the first text for each set of ways
};
