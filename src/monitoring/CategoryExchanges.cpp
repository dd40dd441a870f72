#include "monitoring/CategoryExchanges.h"

#include "frame/JsonKey.h"
#include "frame/RequestFrame.h"
#include "monitoring/SubCategoryJson.h"
#include "query/WhereBuilder.h"

namespace rk {

bool fetchCategories(QStringList& categories)
{
    const Exchange exchange = Exchange::get(resourceUrl("categories"));
    categories = RKPub::getStrListFromVarList(exchange.array().toVariantList());
    // Not the request's own success: a monitoring cannot be classified by an empty list either.
    return !categories.isEmpty();
}

bool fetchSubCategories(const QString& category, QList<RKMonitoringSubCategory>& subCategories)
{
    const QString url =
        projectUrl("projects/%1/subCategories?where=%2").arg(whereEquals(jsonKey("category"), category));
    // Filled aside: the list is cleared only once the answer is there.
    QList<RKMonitoringSubCategory> fetched;
    const bool successful =
        appendRecords(url, fetched, [](const QJsonObject& object, RKMonitoringSubCategory& subCategory) {
            subCategory = subCategoryFromJson(object);
        });
    subCategories = fetched;
    return successful;
}

bool fetchSubCategory(const QString& id, RKMonitoringSubCategory& subCategory)
{
    const Exchange exchange = Exchange::get(resourceUrl("subCategories/%1").arg(id));
    subCategory = subCategoryFromJson(exchange.object());
    return exchange.isSuccessful();
}

} // namespace rk
