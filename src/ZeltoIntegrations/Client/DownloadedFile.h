#pragma once

#include <Platform/FileDescriptor.h>
#include <Platform/FileError.h>
#include <Platform/Result.h>

#include <cstdint>
#include <filesystem>
#include <span>

namespace zelto {

// A file that comes piece by piece. Until it is whole it lies beside its goal, under the goal's name with
// ".part", readable by its user alone; it is removed unless it was finished. No file that is there is ever
// replaced, no symbolic link followed: where a name is taken, " (1)", " (2)" and so on is put before its
// extension. One thread at a time.
class DownloadedFile {
  public:
    // Creates the ".part". The goal's folder must exist.
    static Result<DownloadedFile, FileError> create(std::filesystem::path goal);

    DownloadedFile(DownloadedFile&& other) noexcept;
    DownloadedFile& operator=(DownloadedFile&& other) = delete;
    ~DownloadedFile();

    Result<void, FileError> append(std::span<const std::uint8_t> bytes);

    // Moves the file to its goal, flushed to the disk, and gives the path at which it lies. Once.
    Result<std::filesystem::path, FileError> finish();

  private:
    DownloadedFile(FileDescriptor file, std::filesystem::path part, std::filesystem::path goal);

    FileDescriptor file_;
    std::filesystem::path part_; // empty when it has been moved
    std::filesystem::path goal_;
};

} // namespace zelto
