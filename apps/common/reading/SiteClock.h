#pragma once

#include "reading/WrittenTime.h"

#include <QDateTime>
#include <QTimeZone>

#include <optional>

/// Which of the two hours is meant that a clock shows twice when it is put back.
enum class DoubledHour
{
    First,
    Second
};

/// The clock that the times of a file were read from: it tells which instant a written time is.
class SiteClock
{
public:
    enum class Outcome
    {
        Done,
        /// The text names no offset, and the clock's place is not known.
        NoOffset,
        /// The clock was put forward past that hour.
        Skipped,
        /// The clock showed that hour twice, and it is not said which one is meant.
        Doubled
    };

    /// A clock whose place is not known: only times with an offset are instants.
    SiteClock() = default;
    /// Seconds from UTC, the whole year.
    explicit SiteClock(int utcOffset) : m_utcOffset(utcOffset) {}
    /// A valid zone, with its changes of the clock.
    SiteClock(const QTimeZone& zone, std::optional<DoubledHour> doubled) : m_zone(zone), m_doubled(doubled) {}

    /// The instant, with the offset that held then.
    Outcome read(const WrittenTime& written, QDateTime& time);

    /// What is wrong with `text` after that outcome, in words.
    QString problemOf(Outcome outcome, const QString& text) const;

private:
    Outcome offsetInZone(qint64 clock, int& offset);

    std::optional<int> m_utcOffset;
    QTimeZone m_zone;
    std::optional<DoubledHour> m_doubled;
    // The offset of clock times from m_steadyFrom to m_steadyUntil, in milliseconds, where nothing changes.
    qint64 m_steadyFrom = 0;
    qint64 m_steadyUntil = 0;
    int m_steadyOffset = 0;
};
