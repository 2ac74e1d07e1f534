#pragma once

#include <ZeltoHost/Storage/StorageError.h>

#include <Platform/Result.h>

namespace zelto {

// Makes the directory of the host's files accessible to this user only: the directory and its missing parents
// are created with mode 0700 whatever the umask. An existing one must belong to this user; if others have
// access, it is closed to them if it is empty or contains our account file already, and refused otherwise.
Result<void, StorageError> prepareDataDirectory(const std::filesystem::path& directory);

} // namespace zelto
