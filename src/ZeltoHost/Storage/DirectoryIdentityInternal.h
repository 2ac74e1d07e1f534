#pragma once

// For sources only.

#include <ZeltoHost/Storage/DirectoryIdentity.h>
#include <ZeltoHost/Storage/SQLiteConnectionInternal.h>

namespace zelto {

// The identity of the directory that the connection's account file lies in.
Result<DirectoryIdentity, StorageError> directoryIdentity(SQLiteConnection& connection);

} // namespace zelto
