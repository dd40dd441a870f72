#pragma once

#include "domain/SubCategoryKind.h"

#include <string>

namespace monitorservice {

/// A monitoring and one of its sub-categories: what deliveries, data manages and alarms are about.
struct MonitoredQuantity
{
    std::string project;
    std::string cell;
    std::string cellName;
    std::string category;
    std::string subCategory;
    SubCategoryKind kind = SubCategoryKind::Other; ///< of the sub-category
    std::string unit = {};                         ///< alike
};

} // namespace monitorservice
