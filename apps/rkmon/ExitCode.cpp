#include "ExitCode.h"

ExitCode exitCodeOf(FailureKind kind)
{
    switch (kind) {
    case FailureKind::BadInput:
        return ExitCode::Usage;
    case FailureKind::NotPermitted:
        return ExitCode::NotPermitted;
    case FailureKind::NotFound:
        return ExitCode::NotFound;
    case FailureKind::NoConnection:
        return ExitCode::NoConnection;
    case FailureKind::Cancelled:
        return ExitCode::Interrupted;
    case FailureKind::Refused:
    case FailureKind::BadAnswer:
    case FailureKind::Other:
        break;
    }
    return ExitCode::Failed;
}
