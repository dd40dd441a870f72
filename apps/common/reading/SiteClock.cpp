#include "reading/SiteClock.h"

namespace {

constexpr qint64 oneSecond = 1000; // milliseconds
constexpr qint64 oneDay = 86'400'000;

QDateTime atOffset(qint64 clock, int offset)
{
    const qint64 instant = clock - offset * oneSecond;
    return offset == 0 ? QDateTime::fromMSecsSinceEpoch(instant, Qt::UTC)
                       : QDateTime::fromMSecsSinceEpoch(instant, Qt::OffsetFromUTC, offset);
}

int offsetAt(const QTimeZone& zone, qint64 instant)
{
    return zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(instant, Qt::UTC));
}

} // namespace

SiteClock::Outcome SiteClock::read(const WrittenTime& written, QDateTime& time)
{
    constexpr qint64 julianDayOfEpoch = 2440588; // 1970-01-01
    const qint64 clock = (written.date.toJulianDay() - julianDayOfEpoch) * oneDay + written.millisecondOfDay;
    int offset = 0;
    if (written.utcOffset) {
        offset = *written.utcOffset;
    } else if (m_utcOffset) {
        offset = *m_utcOffset;
    } else if (!m_zone.isValid()) {
        return Outcome::NoOffset;
    } else if (clock >= m_steadyFrom && clock < m_steadyUntil) {
        offset = m_steadyOffset;
    } else {
        const Outcome outcome = offsetInZone(clock, offset);
        if (outcome != Outcome::Done) {
            return outcome;
        }
    }
    time = atOffset(clock, offset);
    return Outcome::Done;
}

SiteClock::Outcome SiteClock::offsetInZone(qint64 clock, int& offset)
{
    // Two days are more than any offset and any change of the clock together.
    const int before = offsetAt(m_zone, clock - 2 * oneDay);
    const int after = offsetAt(m_zone, clock + 2 * oneDay);
    const auto holds = [&](int candidate) {
        return offsetAt(m_zone, clock - candidate * oneSecond) == candidate;
    };
    if (before == after) {
        m_steadyFrom = clock - oneDay;
        m_steadyUntil = clock + oneDay;
        m_steadyOffset = before;
        offset = before;
        return holds(before) ? Outcome::Done : Outcome::Skipped;
    }
    if (holds(before) && holds(after)) {
        offset = m_doubled == DoubledHour::Second ? after : before;
        return m_doubled ? Outcome::Done : Outcome::Doubled;
    }
    offset = holds(before) ? before : after;
    return holds(offset) ? Outcome::Done : Outcome::Skipped;
}

QString SiteClock::problemOf(Outcome outcome, const QString& text) const
{
    const QString zone = QString::fromUtf8(m_zone.id());
    switch (outcome) {
    case Outcome::NoOffset:
        return QStringLiteral("time \"%1\" has no offset from UTC, as %2 has")
            .arg(text, exampleOf(TimeFormat::YearMonthDay));
    case Outcome::Skipped:
        return QStringLiteral("time \"%1\" does not exist: the clock of %2 is put forward past it")
            .arg(text, zone);
    case Outcome::Doubled:
        return QStringLiteral("time \"%1\" is there twice, since the clock of %2 is put back: which one is "
                              "it?")
            .arg(text, zone);
    case Outcome::Done:
        break;
    }
    return QString();
}
