#include "permission/PermissionExchanges.h"

#include "frame/JsonKey.h"
#include "frame/RequestFrame.h"

namespace rk {

bool isPermitted(const QString& category, const char* action)
{
    // The action is part of the template, so that the category is the last thing filled in.
    const QByteArray pathTemplate = QByteArray("projects/%1/auth?category=%2&key=") + action;
    const Exchange exchange = Exchange::get(projectUrl(pathTemplate.constData()).arg(category));
    return exchange.object().value(jsonKey("value")).toString() == QLatin1String("true");
}

} // namespace rk
