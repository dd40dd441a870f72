#include "RKPub.h"

namespace RKPub {

void removeCommonJsonValue(const QJsonObject& before, QJsonObject& after)
{
    // A copy (shared, not deep), because the caller may pass one object as both.
    const QJsonObject previous = before;
    for (auto member = after.begin(); member != after.end();) {
        const auto same = previous.constFind(member.key());
        if (same != previous.constEnd() && same.value() == QJsonValue(member.value()))
            member = after.erase(member);
        else
            ++member;
    }
}

} // namespace RKPub
