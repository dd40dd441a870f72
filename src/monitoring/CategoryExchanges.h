#pragma once

#include "RKMonitoringSubCategory.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace rk {

/// GET categories; replaces `categories`. True when the list is not empty, whatever became of the request.
bool fetchCategories(QStringList& categories);

/// GET projects/{p}/subCategories?where={"category":category}; replaces `subCategories`.
bool fetchSubCategories(const QString& category, QList<RKMonitoringSubCategory>& subCategories);

/// GET subCategories/{id}; `subCategory` is overwritten either way.
bool fetchSubCategory(const QString& id, RKMonitoringSubCategory& subCategory);

} // namespace rk
