#pragma once

#include "Failure.h"

/// What the program's exit status tells a script.
enum class ExitCode
{
    Success = 0,
    /// The service refused the request, or it failed for a reason that no other code names.
    Failed = 1,
    /// The command line or the configuration is wrong; nothing was changed.
    Usage = 2,
    /// The token is not known or does not permit the operation (401, 403), or the answer of `can` is no.
    NotPermitted = 3,
    /// The service does not know the resource, or hides it from this token (404).
    NotFound = 4,
    /// No connection, a connection that broke, or no answer within the deadline.
    NoConnection = 5,
    /// Ended by Ctrl-C: 128 and the number of the signal, as shells count.
    Interrupted = 130
};

/// The status that a command ends with when it failed in this way.
ExitCode exitCodeOf(FailureKind kind);
