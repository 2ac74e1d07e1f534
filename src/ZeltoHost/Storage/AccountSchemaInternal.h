#pragma once

// For sources only.

#include <ZeltoHost/Storage/SQLiteConnectionInternal.h>

#include <span>

namespace zelto {

// Marks a database as an account storage (PRAGMA application_id): "Zlto".
inline constexpr std::int64_t accountApplicationId = 0x5a6c746f;

// The steps from each version of the schema to the next, the first from an empty database to version 1. A
// step that has been released never changes.
std::span<const char* const> accountSchemaSteps();

// Brings the database to the version that the number of steps tells (PRAGMA user_version), in one
// transaction. One of a higher version is refused with newerVersion.
Result<void, StorageError> migrate(SQLiteConnection& connection, std::span<const char* const> steps);

} // namespace zelto
