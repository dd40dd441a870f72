#pragma once

#include "RKMonitoringSubCategory.h"

#include <QJsonObject>

namespace rk {

/// A sub-category from a service object; what the object lacks is empty.
RKMonitoringSubCategory subCategoryFromJson(const QJsonObject& object);

} // namespace rk
