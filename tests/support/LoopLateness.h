#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <algorithm>

/// How late the thread's event loop has been since this was made, in milliseconds altogether: what a busy
/// machine adds to whatever is waited for. A timer of 5 ms measures it.
class LoopLateness
{
public:
    LoopLateness()
    {
        m_sinceTick.start();
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { tick(); });
        m_timer.start(interval);
    }

    qint64 milliseconds()
    {
        tick();
        return m_late;
    }

private:
    static constexpr int interval = 5;

    void tick() { m_late += std::max<qint64>(0, m_sinceTick.restart() - interval); }

    QTimer m_timer;
    QElapsedTimer m_sinceTick;
    qint64 m_late = 0;
};
