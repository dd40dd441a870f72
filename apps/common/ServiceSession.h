#pragma once

#include "Configuration.h"
#include "RequestFailure.h"

#include <NetworkManager.h>
#include <QByteArray>
#include <QScopedValueRollback>
#include <QString>
#include <RKMonitoringData.h>

#include <memory>
#include <optional>
#include <utility>

class ServiceExtensions;

/// Work with the service: the library, and how its requests went. One at a time.
class ServiceSession
{
public:
    /// Applies `configuration` to the process and watches its requests.
    explicit ServiceSession(const Configuration& configuration);
    ~ServiceSession();
    ServiceSession(const ServiceSession&) = delete;
    ServiceSession& operator=(const ServiceSession&) = delete;

    const Configuration& configuration() const { return m_configuration; }

    /// What the service can beyond the library's operations; asked at the first use.
    ServiceExtensions& extensions() { return *m_extensions; }

    /// Identifier of the project; may be empty. A project that was given by its name is looked up at the
    /// first use. Throws a Failure when the service has none or several of that name, or cannot tell.
    QString project();

    /// The library, for operations that name no project.
    RKMonitoringData& data() { return *RKMonitoringData::instance(); }

    /// The library, for operations in the project. Throws a Failure as project() does, and when none is
    /// configured (BadInput).
    RKMonitoringData& projectData();

    /// Runs one operation of the library, which must send a request, and returns its result; throws a Failure
    /// when the request failed. The operation's own flag does not decide: some report a failure as success,
    /// others an empty answer as a failure. `purpose` completes "cannot ...".
    template <typename Operation>
    auto ask(const QString& purpose, Operation operation, Repetition repetition = Repetition::MayDouble)
    {
        m_lastExchange.reset();
        auto result = operation();
        requireAnswer(purpose, repetition);
        return result;
    }

    /// As ask(), for what the library leaves out of the answer: gives its body.
    template <typename Operation>
    QByteArray answerTo(const QString& purpose, Operation operation,
                        Repetition repetition = Repetition::MayDouble)
    {
        const QScopedValueRollback<bool> keeping(m_keepsAnswer, true);
        ask(purpose, operation, repetition);
        return std::exchange(m_lastExchange->answer, QByteArray());
    }

    /// As ask(), for an operation that the library may answer from its cache.
    template <typename Operation>
    auto recall(const QString& purpose, Operation operation)
    {
        m_lastExchange.reset();
        auto result = operation();
        if (m_lastExchange) {
            requireAnswer(purpose, Repetition::MayDouble);
        }
        return result;
    }

private:
    void lookUpProject();
    void requireAnswer(const QString& purpose, Repetition repetition) const;

    Configuration m_configuration;
    std::unique_ptr<ServiceExtensions> m_extensions;
    std::optional<NetworkExchange> m_lastExchange;
    bool m_keepsAnswer = false; ///< in m_lastExchange: it may be large
};
