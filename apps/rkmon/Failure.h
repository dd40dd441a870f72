#pragma once

#include "ExitCode.h"

#include <QString>

#include <stdexcept>

/// Why a command ended without its result: the message for people and the exit status. Thrown by the commands
/// and caught in `main` only.
class Failure : public std::runtime_error
{
public:
    Failure(ExitCode code, const QString& message) : std::runtime_error(message.toStdString()), m_code(code)
    {
    }

    ExitCode code() const { return m_code; }
    QString message() const { return QString::fromUtf8(what()); }

private:
    ExitCode m_code;
};
