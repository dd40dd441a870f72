#pragma once

#include "api/Router.h"

namespace monitorservice {

/// The routes of each resource, one file for each.
std::vector<Route> authRoutes();
std::vector<Route> cellRoutes();
std::vector<Route> categoryRoutes();
std::vector<Route> dataManageDeletionRoutes();
std::vector<Route> deliveryRoutes();
std::vector<Route> subCategoryRoutes();

/// All of them.
std::vector<Route> allRoutes();

} // namespace monitorservice
