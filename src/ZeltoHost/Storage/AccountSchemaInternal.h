#pragma once

// For sources only.

#include <ZeltoHost/Storage/SQLiteConnectionInternal.h>

#include <span>

namespace zelto {

// Marks a database as an account storage (PRAGMA application_id): "Zlto".
inline constexpr std::int64_t accountApplicationId = 0x5a6c746f;

// The first versions of the schema that have what was added later. An older file that cannot be written to is
// read without it.
inline constexpr std::int64_t versionWithMarks = 2;
inline constexpr std::int64_t versionWithIdentity = 3;

// The steps from each version of the schema to the next, the first from an empty database to version 1. A
// released step never changes.
std::span<const char* const> accountSchemaSteps();

// Migrates the database to the latest version (PRAGMA user_version), which is the number of steps, in one
// transaction. A higher version is refused with newerVersion.
Result<void, StorageError> migrate(SQLiteConnection& connection, std::span<const char* const> steps);

} // namespace zelto
