#pragma once

#include <ZeltoHost/Storage/StorageError.h>

#include <Platform/Result.h>

namespace zelto {

// Makes the directory where the host keeps its files usable by this user alone: it and its missing parents
// are made with mode 0700 whatever the umask. One that is there must belong to this user; if others may enter
// it, it is closed to them when it is empty or holds our account file already, else it is refused.
Result<void, StorageError> prepareDataDirectory(const std::filesystem::path& directory);

} // namespace zelto
