#pragma once

#include "notify/Dispatcher.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace monitorservice {

/// A thread that sends what is due on one channel. Looking each second costs less than being woken by whoever
/// commits, and sees what other processes have committed.
class Notifier
{
public:
    /// Begins at once.
    Notifier(Dispatcher dispatcher, NotifyLog log);
    /// Gives up what is on its way, and ends within a few seconds.
    ~Notifier();
    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;

private:
    void run();
    /// False when the store cannot be used.
    bool sendAll();
    void wait(std::chrono::milliseconds time);

    Dispatcher m_dispatcher;
    NotifyLog m_log;
    std::atomic<bool> m_stop{false};
    std::mutex m_mutex;
    std::condition_variable m_stopping;
    std::thread m_thread; // the last one: it uses the others
};

} // namespace monitorservice
