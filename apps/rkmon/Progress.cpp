#include "Progress.h"

#include "Terminal.h"

#include <cstdio>

namespace {

constexpr int secondsPerMinute = 60;
constexpr int secondsPerHour = 3600;

// "3 s", "2 min 5 s", "1 h 20 min"
QString durationText(qint64 seconds)
{
    if (seconds < secondsPerMinute) {
        return QStringLiteral("%1 s").arg(seconds);
    }
    if (seconds < secondsPerHour) {
        return QStringLiteral("%1 min %2 s").arg(seconds / secondsPerMinute).arg(seconds % secondsPerMinute);
    }
    return QStringLiteral("%1 h %2 min")
        .arg(seconds / secondsPerHour)
        .arg(seconds % secondsPerHour / secondsPerMinute);
}

} // namespace

QString progressText(int done, int total, const QString& unit, qint64 milliseconds)
{
    constexpr int cells = 30;
    constexpr double millisecondsPerSecond = 1000.0;
    const int filled = total > 0 ? static_cast<int>(static_cast<qint64>(cells) * done / total) : 0;
    const QString bar = QString(filled, QLatin1Char('#')) + QString(cells - filled, QLatin1Char('-'));
    const QString text = QStringLiteral("[%1] %2 of %3 %4").arg(bar).arg(done).arg(total).arg(unit);
    if (done <= 0 || milliseconds <= 0) {
        return text;
    }
    const double rate = done * millisecondsPerSecond / static_cast<double>(milliseconds);
    const qint64 left = qRound64((total - done) / rate);
    return text + QStringLiteral(", %1/s, %2 left").arg(qRound64(rate)).arg(durationText(left));
}

Progress::Progress(const QString& unit, int total)
    : m_unit(unit), m_total(total), m_isShown(total > 0 && terminal::isTerminal(stderr))
{
    m_clock.start();
}

Progress::~Progress()
{
    if (m_isShown) {
        std::fputs("\r\033[K", stderr);
    }
}

void Progress::show(int done)
{
    if (!m_isShown) {
        return;
    }
    const QString line = progressText(done, m_total, m_unit, m_clock.elapsed());
    std::fputs(QStringLiteral("\r\033[K%1").arg(line).toUtf8().constData(), stderr);
    std::fflush(stderr);
}
