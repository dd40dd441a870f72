#pragma once

#include "store/Store.h"
#include "store/StoreOptions.h"

#include <memory>
#include <string>

namespace monitorservice {

/// Opens the store at a location, and brings it to the current version: the path of a file. Throws StoreError
/// with StoreFailure::CannotOpen and a message that names the location when it cannot, and when the location
/// is of a kind that it does not know.
std::unique_ptr<Store> openStore(const std::string& location, const StoreOptions& options = {});

/// Whether there is something at the location already, so that openStore() would not make it anew.
bool storeExists(const std::string& location);

} // namespace monitorservice
