#pragma once

#include "store/Store.h"
#include "store/StoreOptions.h"

#include <memory>
#include <string>

namespace monitorservice {

/// Opens the store at a location, and brings it to the current version: the path of a file, or the address of
/// a database, "postgresql://…". Throws StoreError
/// with StoreFailure::CannotOpen and a message that names the location when it cannot, and when the location
/// is of a kind that it does not know.
std::unique_ptr<Store> openStore(const std::string& location, const StoreOptions& options = {});

/// Whether there is something at the location already, so that openStore() would not make it anew.
/// Throws StoreError when a database does not tell.
bool storeExists(const std::string& location);

/// The location as it may be shown: without a password.
std::string nameOfStore(const std::string& location);

/// Writes all that the store in a file holds at one moment to a new file, from which restoreStore() makes
/// it again; services and commands may use the store meanwhile. The file is readable by its owner alone, was
/// checked, and survives a loss of power when this returns. Throws StoreError and leaves nothing when that
/// cannot be done and when the file exists.
void backUpStore(const std::string& location, const std::string& file);

/// Makes a store at a location of what backUpStore() wrote, this version or an earlier one. Throws StoreError
/// and leaves nothing there when the file is not intact or not known, when there is something at the
/// location, and when a service uses it.
void restoreStore(const std::string& file, const std::string& location);

} // namespace monitorservice
