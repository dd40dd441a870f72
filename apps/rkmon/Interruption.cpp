#include "Interruption.h"

#include "ExitCode.h"

#include <NetworkManager.h>

#include <csignal>
#include <cstdlib>

namespace {

volatile std::sig_atomic_t isInterrupted = 0;

void noteInterruption(int signal)
{
    if (isInterrupted != 0) {
        std::_Exit(static_cast<int>(ExitCode::Interrupted));
    }
    isInterrupted = 1;
    std::signal(signal, noteInterruption); // some systems forget it once it was called
}

} // namespace

Interruption::Interruption()
{
    constexpr int interval = 50; // milliseconds
    isInterrupted = 0;
    m_earlier = std::signal(SIGINT, noteInterruption);
    QObject::connect(&m_timer, &QTimer::timeout, [] {
        if (isInterrupted != 0) {
            NetworkManager::instance().abortAll();
        }
    });
    m_timer.start(interval);
}

Interruption::~Interruption()
{
    std::signal(SIGINT, m_earlier);
}

bool Interruption::isAsked() const
{
    return isInterrupted != 0;
}
