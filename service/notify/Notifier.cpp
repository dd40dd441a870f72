#include "notify/Notifier.h"

#include <chrono>
#include <exception>
#include <utility>

namespace monitorservice {

Notifier::Notifier(Dispatcher dispatcher, NotifyLog log)
    : m_dispatcher(std::move(dispatcher)), m_log(std::move(log)), m_thread([this] { run(); })
{
}

Notifier::~Notifier()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_stopping.notify_all();
    m_thread.join();
}

void Notifier::run()
{
    constexpr std::chrono::seconds betweenLooks(1);
    constexpr std::chrono::seconds afterFailure(10);
    while (!m_stop) {
        wait(sendAll() ? betweenLooks : afterFailure);
    }
}

bool Notifier::sendAll()
{
    try {
        while (!m_stop && m_dispatcher.sendNext(m_stop)) {
        }
        return true;
    } catch (const std::exception& error) {
        m_log(std::string("notifications: ") + error.what());
        return false;
    }
}

void Notifier::wait(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_mutex);
    m_stopping.wait_for(lock, time, [this] { return m_stop.load(); });
}

} // namespace monitorservice
