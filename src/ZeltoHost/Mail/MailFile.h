#pragma once

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>
#include <ZeltoHost/Mail/MailError.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <memory>
#include <span>
#include <stop_token>

namespace zelto {

// A mail on disk, held open: deleting or replacing the file has no effect, changing it in place is detected.
// Any thread.
class MailFile {
  public:
    // Opens a regular file, or a pipe, which is first copied to a temporary file.
    static Result<std::shared_ptr<const MailFile>, MailError> open(const std::filesystem::path& path);

    std::uint64_t size() const { return size_; }

    // Fills the whole buffer from the offset on; `changed` if the file has less.
    Result<void, MailError> read(std::uint64_t offset, std::span<char> buffer) const;

    // False once the file has been written to or truncated since it was opened.
    bool isUnchanged() const;

  private:
    MailFile(FileDescriptor file, std::uint64_t size, timespec modified);

    FileDescriptor file_;
    std::uint64_t size_;
    timespec modified_;
};

// Copies everything from an open file, such as standard input, to a file in the process's private temporary
// directory, and gives its path. Ends as `canceled` when a stop is asked for.
Result<std::filesystem::path, MailError> spool(int descriptor, const std::stop_token& stop = {});

} // namespace zelto
