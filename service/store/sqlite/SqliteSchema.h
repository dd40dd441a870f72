#pragma once

#include "store/sqlite/SqliteConnection.h"

#include <chrono>
#include <string>

namespace monitorservice {

/// Makes an empty database, or one of an earlier version, the current one, step by step in one transaction.
/// Throws StoreError with StoreFailure::CannotOpen when the file is another application's or of a later
/// version.
void migrate(SqliteConnection& connection, std::chrono::milliseconds patience);

/// Throws StoreError with StoreFailure::CannotOpen unless the database is one of ours, of the current version
/// or an earlier one.
void requireKnown(SqliteConnection& connection);

/// Whether a copy into the database was begun and not ended. The database is of the current version.
bool isUnfinishedCopy(SqliteConnection& connection);

/// The SQL expression for the Instant that a text holds as isoText() writes it; NULL for an empty text.
/// `text` is SQL too.
std::string instantIn(const std::string& text);

} // namespace monitorservice
