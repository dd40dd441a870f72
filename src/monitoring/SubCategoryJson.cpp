#include "monitoring/SubCategoryJson.h"

#include "frame/JsonKey.h"

namespace rk {

RKMonitoringSubCategory subCategoryFromJson(const QJsonObject& object)
{
    RKMonitoringSubCategory subCategory;
    subCategory.id = object.value(jsonKey("_id")).toString();
    subCategory.name = object.value(jsonKey("name")).toString();
    subCategory.category = object.value(jsonKey("category")).toString();
    subCategory.alias = object.value(jsonKey("alias")).toString();
    return subCategory;
}

} // namespace rk
