#pragma once

#include <ZeltoHost/Storage/StorageError.h>

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <filesystem>
#include <string_view>

namespace zelto {

// The file for a lock, for the user alone, made with its directory if need be. `additionalFlags`: of open().
Result<FileDescriptor, StorageError> openLockFile(const std::filesystem::path& file, int additionalFlags = 0);

// flock(), tried again when a signal came. The lock ends with the descriptor, and with its process.
bool lockFile(const FileDescriptor& file, int how);

// A lock file below "locks" in the data directory, whose name says nothing of the text that it stands for.
std::filesystem::path lockPath(const std::filesystem::path& dataDirectory, std::string_view text);

} // namespace zelto
