#pragma once

#include "Fault.h"
#include "WireOperation.h"

#include <NetworkManager.h>
#include <QList>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

/// Plays faults to operations of the library and looks at everything that is promised about each: that it
/// returns within its deadline, that it fails (or succeeds, where that is the design), what its outputs and
/// the caches hold, how often the service was asked, and that the next operation works.
class FaultTest : public testing::Test
{
protected:
    FaultTest();
    ~FaultTest() override;
    FaultTest(const FaultTest&) = delete;
    FaultTest& operator=(const FaultTest&) = delete;

    /// To every operation, on a fresh and on a kept connection, each time by a server of its own.
    void play(const Fault& fault);
    /// To one operation by one server, which may be used again after a fault that ends its connection.
    /// `answerSize` is the size of the good answer that the fault spoils.
    void play(const Fault& fault, const WireOperation& operation, bool onKeptConnection, int answerSize,
              ScriptServer& server);
    /// Prints and records how many runs there were.
    void report(int faults) const;

    /// Makes the server of each run; a plain one at first.
    std::function<std::unique_ptr<ScriptServer>()> makeServer = [] {
        return std::make_unique<ScriptServer>();
    };
    /// Changes the server before the fault, and back after it.
    std::function<void(ScriptServer&)> spoil = [](ScriptServer&) {
    };
    std::function<void(ScriptServer&)> repair = [](ScriptServer&) {
    };

    NetworkManager& manager = NetworkManager::instance();

private:
    struct Run
    {
        const Fault& fault;
        const WireOperation& operation;
        bool isKept;
        QByteArray answer;
        QNetworkReply::NetworkError error;
        ScriptServer& server;
        QStringList deviations;
        int connection = 0; ///< the one that the request is to come on
    };

    void keepConnection(Run& run);
    void arrange(Run& run) const;
    void runOperation(Run& run);
    void checkExchange(Run& run, qint64 milliseconds, qint64 bound) const;
    void checkRequests(Run& run, int requestsBefore) const;
    void checkCaches(Run& run) const;
    void checkNextOperation(Run& run);
    static WireOutcome outcomeOf(const Run& run);

    RKMonitoringData& m_data = *RKMonitoringData::instance();
    QList<NetworkExchange> m_exchanges;
    const NetworkObservation m_observation =
        manager.addObserver([this](const NetworkExchange& exchange) { m_exchanges.append(exchange); });
    int m_runs = 0;
    int m_failures = 0;
};
