#pragma once

#include <QString>

#include <stdexcept>

/// What kind of failure it is.
enum class FailureKind
{
    /// What the user gave or configured is wrong; nothing was changed.
    BadInput,
    /// The token is not known or does not permit the operation (401, 403).
    NotPermitted,
    /// What was named does not exist, or the service hides it from this token (404).
    NotFound,
    /// No connection, a connection that broke, or no answer within the deadline.
    NoConnection,
    /// The service refused the request or failed to carry it out.
    Refused,
    /// The answer makes no sense, or is not about what was asked for.
    BadAnswer,
    /// The user ended it.
    Cancelled,
    /// Any other reason: what is held contradicts what was planned, a file cannot be read or written.
    Other
};

/// What the user can do about a failure. An application says where in its own place: an option, a setting.
enum class Remedy
{
    None,
    GiveAddress,
    GiveProject,
    GiveTokenFile,
    ExtendDeadline,
    TrustCertificate,
    GiveSubCategory,
    ListProjects,
    ListMonitorings,
    ListSubCategories
};

/// Why an operation ended without its result, with the message for people.
class Failure : public std::runtime_error
{
public:
    Failure(FailureKind kind, const QString& message, Remedy remedy = Remedy::None)
        : std::runtime_error(message.toStdString()), m_kind(kind), m_remedy(remedy)
    {
    }

    FailureKind kind() const { return m_kind; }
    Remedy remedy() const { return m_remedy; }
    QString message() const { return QString::fromUtf8(what()); }

    /// The same failure, whose message goes on with `addition`.
    Failure extended(const QString& addition) const
    {
        return {m_kind, message() + QStringLiteral("; ") + addition, m_remedy};
    }

private:
    FailureKind m_kind;
    Remedy m_remedy;
};
