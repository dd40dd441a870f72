#pragma once

#include "store/postgres/PostgresConnection.h"

#include <cstdint>

namespace monitorservice {

/// Whether the database has the tables of a store, of whatever version.
bool isSetUp(PostgresConnection& connection);

/// The version of the tables that this service works with.
std::int64_t knownVersion();

/// Whether the tables are there and of the version that this service works with.
bool isUpToDate(PostgresConnection& connection);

/// Makes an empty database, or one of an earlier version, the current one, step by step in one transaction.
/// Throws StoreError with StoreFailure::CannotOpen when the database is another application's, of a later
/// version, or not one that a store can be in.
void migrate(PostgresConnection& connection);

/// Whether a copy into the database was begun and not ended. The database is up to date.
bool isUnfinishedCopy(PostgresConnection& connection);

} // namespace monitorservice
