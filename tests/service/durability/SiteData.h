#pragma once

#include "SiteModel.h"
#include "store/Store.h"

#include <set>
#include <string>
#include <vector>

namespace monitorservice::test {

/// Writes a project with its monitorings, groups and the token of an editor into a store; the groups list the
/// points of so many clients.
Site makeSite(Store& store, std::size_t clients);

/// The same in a new data file, or in an empty database.
Site makeSite(const std::string& location, std::size_t clients);

/// The fileIds of all deliveries that a store has in its history.
std::set<std::string> heldFiles(Store& store, const Site& site);

/// Whether data are in a database, not in a file.
bool isDatabase(const std::string& location);

/// What is wrong with data by themselves: a damaged file, dangling references, counts and histories that
/// contradict the samples. Empty when nothing is.
std::vector<std::string> flawsOf(const std::string& location, const Site& site);

/// Whether a store holds all that a model says; it may hold more.
bool holdsAllOf(Store& store, const Site& site, const SiteModel& model);

/// What is held otherwise than the models of all clients together say, one line for each sample,
/// day, point, delivery and excess. Empty when it holds just that.
std::vector<std::string> differences(const std::string& location, const Site& site,
                                     const std::vector<const SiteModel*>& models);

} // namespace monitorservice::test
