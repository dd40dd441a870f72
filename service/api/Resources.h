#pragma once

#include "api/Router.h"

namespace monitorservice {

/// The routes of each resource, one file for each. Those of one path stand together in allRoutes().
std::vector<Route> aboutRoutes();
std::vector<Route> alarmRoutes();
std::vector<Route> authRoutes();
std::vector<Route> cellRoutes();
std::vector<Route> categoryRoutes();
std::vector<Route> changeRoutes();
std::vector<Route> dataManageDeletionRoutes();
std::vector<Route> dataManageRoutes();
std::vector<Route> deliveryRoutes();
std::vector<Route> deliveryUndoRoutes();
std::vector<Route> groupRoutes();
std::vector<Route> pointLocationChangeRoutes();
std::vector<Route> pointLocationDeletionRoutes();
std::vector<Route> pointLocationLinkRoutes();
std::vector<Route> pointLocationReadRoutes();
std::vector<Route> projectRoutes();
std::vector<Route> statisticsRoutes();
std::vector<Route> subCategoryRoutes();

/// All of them, each path once.
std::vector<Route> allRoutes();

} // namespace monitorservice
