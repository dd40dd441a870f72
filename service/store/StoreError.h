#pragma once

#include <stdexcept>
#include <string>

namespace monitorservice {

/// Why the store could not do what was asked.
enum class StoreFailure
{
    Busy,           ///< other writers took longer than the patience of the store; trying again later helps
    Unreachable,    ///< the database cannot be reached; nothing is written
    Unacknowledged, ///< the database has not confirmed a commit: the changes may be there, now or later, or
                    ///< not
    Full,           ///< no room left where the data lie
    NotWritable,    ///< writing failed for another reason: the disk does not let it; what is held can be read
    InputOutput,    ///< reading failed, or what was read is damaged
    Conflict,       ///< what should be unique exists already, or what is referred to does not exist
    CannotOpen,     ///< the data cannot be used at all: missing, not ours, damaged, newer, read-only
    Internal        ///< anything else: a mistake of the service
};

/// Thrown by the store; the message is for the operator and may name files, never for a client.
class StoreError : public std::runtime_error
{
public:
    StoreError(StoreFailure failure, const std::string& message)
        : std::runtime_error(message), m_failure(failure)
    {
    }

    StoreFailure failure() const noexcept { return m_failure; }

private:
    StoreFailure m_failure;
};

} // namespace monitorservice
