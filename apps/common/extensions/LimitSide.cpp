#include "extensions/LimitSide.h"

#include "extensions/AnswerObject.h"

QString textOf(LimitSide side)
{
    switch (side) {
    case LimitSide::Both:
        break;
    case LimitSide::Rising:
        return QStringLiteral("rising");
    case LimitSide::Falling:
        return QStringLiteral("falling");
    }
    return QStringLiteral("both");
}

std::optional<LimitSide> limitSideOf(const QString& text)
{
    for (const LimitSide side : {LimitSide::Both, LimitSide::Rising, LimitSide::Falling}) {
        if (textOf(side) == text) {
            return side;
        }
    }
    return std::nullopt;
}

namespace extensions {

LimitSide limitSideIn(const AnswerObject& object, const char* member)
{
    const std::optional<LimitSide> side = limitSideOf(object.text(member));
    if (!side) {
        object.refuse(member, QStringLiteral("neither both, rising nor falling"));
    }
    return *side;
}

} // namespace extensions
