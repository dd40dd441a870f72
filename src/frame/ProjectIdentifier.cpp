#include "frame/ProjectIdentifier.h"

#include "frame/Companions.h"

namespace rk {

QString projectIdentifier()
{
    return GetSoftCache()->RKMONITORINGDATA_PROJECT_ACCESSOR();
}

QJsonValue projectIdentifierValue()
{
    const QString identifier = projectIdentifier();
    return identifier.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(identifier);
}

} // namespace rk
