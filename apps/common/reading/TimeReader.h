#pragma once

#include "reading/SiteClock.h"
#include "reading/UnclearFormat.h"
#include "reading/WrittenTime.h"

#include <QDateTime>
#include <QList>
#include <QString>

/// Reads the times of a file.
class TimeReader
{
public:
    /// At least one format.
    TimeReader(const QList<TimeFormat>& formats, SiteClock clock, QChar decimalSign)
        : m_formats(formats), m_clock(std::move(clock)), m_decimalSign(decimalSign)
    {
    }

    /// What is wrong with `text`, in words; empty: nothing. What must be given to read it goes to `unclear`.
    QString read(const QString& text, QDateTime& time, UnclearFormat& unclear);

private:
    QString readWritten(const QString& text, WrittenTime& written, UnclearFormat& unclear) const;
    QString otherForm(const QString& text) const;

    QList<TimeFormat> m_formats;
    SiteClock m_clock;
    QChar m_decimalSign;
};
