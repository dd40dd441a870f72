#include "reading/TimeReader.h"

QString TimeReader::read(const QString& text, QDateTime& time, UnclearFormat& unclear)
{
    if (text.isEmpty()) {
        return QStringLiteral("the time is empty");
    }
    WrittenTime written;
    const QString problem = readWritten(text, written, unclear);
    if (!problem.isEmpty()) {
        return problem;
    }
    const SiteClock::Outcome outcome = m_clock.read(written, time);
    unclear.utcOffset = unclear.utcOffset || outcome == SiteClock::Outcome::NoOffset;
    unclear.doubledHour = unclear.doubledHour || outcome == SiteClock::Outcome::Doubled;
    return outcome == SiteClock::Outcome::Done ? QString() : m_clock.problemOf(outcome, text);
}

QString TimeReader::readWritten(const QString& text, WrittenTime& written, UnclearFormat& unclear) const
{
    bool isRead = false;
    bool isWrittenSo = false;
    for (const TimeFormat format : m_formats) {
        WrittenTime candidate;
        const TimeReading reading = readWrittenTime(text, format, m_decimalSign, candidate);
        isWrittenSo = isWrittenSo || reading == TimeReading::DoesNotExist;
        if (reading != TimeReading::Done) {
            continue;
        }
        const bool isSame = candidate.date == written.date &&
                            candidate.millisecondOfDay == written.millisecondOfDay &&
                            candidate.utcOffset == written.utcOffset;
        if (isRead && !isSame) {
            for (const TimeFormat way : m_formats) {
                unclear.timeFormats.append(nameOf(way));
            }
            unclear.timeFormats.removeDuplicates();
            return QStringLiteral("time \"%1\" can be read in more than one of the ways that are given")
                .arg(text);
        }
        written = candidate;
        isRead = true;
    }
    if (isRead) {
        return QString();
    }
    return isWrittenSo ? QStringLiteral("time \"%1\" does not exist").arg(text) : otherForm(text);
}

QString TimeReader::otherForm(const QString& text) const
{
    QStringList examples;
    for (const TimeFormat format : m_formats) {
        examples.append(exampleOf(format));
    }
    return QStringLiteral("time \"%1\" is not one like %2").arg(text, examples.join(QStringLiteral(" or ")));
}
