#pragma once

// Only for the sources of the key chain.

#include <TrovenhalCommon/KeyChain/KeyChainError.h>

#include <Platform/Data.h>
#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace zelto {

// The file's bytes; `nullopt` if there is none. Refused: symbolic links, what is not a regular file, files of
// another user or that others have access to, and files beyond the limit.
Result<std::optional<Data>, KeyChainError> readPrivateFile(const std::filesystem::path& path,
                                                           std::uint64_t limit);

// Readers see the old bytes or the new, even after a crash. To be called only under the file's lock: it
// writes to a temporary file next to it that always has the same name, so that a crash leaves at most one,
// which the next call removes. Mode 0600.
Result<void, KeyChainError> replacePrivateFile(const std::filesystem::path& path,
                                               std::span<const std::uint8_t> bytes);

// Creates a missing directory and the missing ones above it with mode 0700. Refused: a directory of another
// user, or one that others may write to.
Result<void, KeyChainError> preparePrivateDirectory(const std::filesystem::path& directory);

// Waits for the lock between processes on the path, and holds it as long as the result lives.
Result<FileDescriptor, KeyChainError> lockFile(const std::filesystem::path& path);

} // namespace zelto
