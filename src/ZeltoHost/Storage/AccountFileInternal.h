#pragma once

// For sources only.

#include <ZeltoHost/Storage/SQLiteConnectionInternal.h>

namespace zelto {

inline constexpr const char* accountFileName = "accounts.sqlite";

// Opens the account file of a directory that prepareDataDirectory has prepared; creates it first if there is
// none. It appears whole or not at all, so that an empty or truncated file is always damaged.
Result<std::unique_ptr<SQLiteConnection>, StorageError>
openAccountFile(const std::filesystem::path& directory);

// Opens an account file to read it alone, on a disk that is full or cannot be written to; null where it
// cannot be read either.
std::unique_ptr<SQLiteConnection> readAccountFile(const std::filesystem::path& directory);

} // namespace zelto
