#pragma once

#include <QString>

#include <optional>

class AnswerObject;

/// Which variations a limit is for.
enum class LimitSide
{
    Both,
    Rising, ///< those above 0
    Falling ///< those below 0
};

/// "both", "rising" or "falling", as the service writes it.
QString textOf(LimitSide side);

/// The side with this text; nothing when there is none.
std::optional<LimitSide> limitSideOf(const QString& text);

namespace extensions {

/// The side that a member of an answer names. Throws a Failure (BadAnswer) when it names none.
LimitSide limitSideIn(const AnswerObject& object, const char* member);

} // namespace extensions
