#include "Progress.h"

#include "Terminal.h"

#include <QByteArray>

#include <cstdio>

Progress::Progress(const QString& unit, int total)
    : m_unit(unit), m_total(total), m_isShown(total > 0 && terminal::isTerminal(stderr))
{
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
    constexpr int cells = 30;
    const int filled = static_cast<int>(static_cast<qint64>(cells) * done / m_total);
    const QString bar = QString(filled, QLatin1Char('#')) + QString(cells - filled, QLatin1Char('-'));
    const QString line =
        QStringLiteral("\r\033[K[%1] %2 of %3 %4").arg(bar).arg(done).arg(m_total).arg(m_unit);
    std::fputs(line.toUtf8().constData(), stderr);
    std::fflush(stderr);
}
