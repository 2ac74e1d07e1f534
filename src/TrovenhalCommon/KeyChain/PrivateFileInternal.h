#pragma once

// For the sources of the key chain only.

#include <TrovenhalCommon/KeyChain/KeyChainError.h>

#include <Platform/Data.h>
#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace zelto {

// The file's bytes; nothing if there is none. Refused: symbolic links, what is no file, files of another user
// or that let others in, and more than the limit.
Result<std::optional<Data>, KeyChainError> readPrivateFile(const std::filesystem::path& path,
                                                           std::uint64_t limit);

// Readers see the old bytes or the new, after a crash too. Only under the lock of the file: it writes to a
// name beside it that is always the same, so that a crash leaves no more than one rest, which the next call
// takes away. Mode 0600.
Result<void, KeyChainError> replacePrivateFile(const std::filesystem::path& path,
                                               std::span<const std::uint8_t> bytes);

// Makes the directory with mode 0700 where it is missing, the folders above it too. Refused: a directory of
// another user, or one in which others may write.
Result<void, KeyChainError> preparePrivateDirectory(const std::filesystem::path& directory);

// Waits for the lock of all processes on the path, and holds it as long as the result lives.
Result<FileDescriptor, KeyChainError> lockFile(const std::filesystem::path& path);

} // namespace zelto
