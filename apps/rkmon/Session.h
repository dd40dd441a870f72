#pragma once

#include "Configuration.h"
#include "ExitCode.h"
#include "Output.h"
#include "RequestFailure.h"

#include <NetworkManager.h>
#include <QString>
#include <QStringList>
#include <RKMonitoringData.h>

#include <functional>
#include <optional>

/// What a command works with: the library, the way its requests went, and the place for its result.
class Session
{
public:
    /// Applies `configuration` to the process and watches its requests.
    Session(const Configuration& configuration, OutputForm form);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    Output& output() { return m_output; }

    /// The library, for operations that name no project.
    RKMonitoringData& data() { return *RKMonitoringData::instance(); }

    /// The library, for operations in the project. Throws a usage Failure when none is configured.
    RKMonitoringData& projectData();

    /// Identifier of the project; may be empty.
    QString project() const { return m_configuration.project; }

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

    /// Tells the user something on standard error, at once.
    void note(const QString& message) const;

    /// Tells the user something after the result.
    void noteAfterwards(const QString& message) { m_closingNotes.append(message); }

    /// Writes the result, and then what is to be said after it.
    void finish();

private:
    void requireAnswer(const QString& purpose, Repetition repetition) const;

    Configuration m_configuration;
    Output m_output;
    std::optional<NetworkExchange> m_lastExchange;
    QStringList m_closingNotes;
};

/// What a subcommand does once the command line is read; returns the exit status, or throws a Failure.
using Command = std::function<ExitCode(Session&)>;
