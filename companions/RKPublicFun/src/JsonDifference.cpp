#include "RKPub.h"

namespace RKPub {

void removeCommonJsonValue(const QJsonObject& before, QJsonObject& after)
{
    QJsonObject changed; // apart from `after`, which the caller may pass as `before` too
    for (auto member = after.constBegin(); member != after.constEnd(); ++member) {
        const auto earlier = before.constFind(member.key());
        if (earlier == before.constEnd() || earlier.value() != member.value()) {
            changed.insert(member.key(), member.value());
        }
    }
    after = changed;
}

} // namespace RKPub
