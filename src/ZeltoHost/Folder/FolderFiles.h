#pragma once

#include <Platform/FileError.h>
#include <Platform/Result.h>
#include <TrovenhalCommon/Protected.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

enum class FolderUse {
    writes,
    plans, // for a dry run: files only get their names
};

// The text with "_" for each "/" and "\": a title's are no separators of folders.
std::string withoutSeparators(std::string text);

// What a client without a network puts into its folder. A file appears whole, flushed to the disk, or not at
// all; it never replaces another one (" (1)" and so on is put before its extension), and no symbolic link in
// the folder is followed. The folder itself is never made. Any thread.
class FolderFiles {
  public:
    using Cancellations = std::uint64_t;
    using Append = std::function<Result<void, FileError>(std::string_view)>;
    // Gives a file's content to the function piece by piece, up to its first failure, which is returned.
    using Content = std::function<Result<void, FileError>(const Append&)>;
    // Why there is no file; no value where the making was cancelled.
    using Failure = std::optional<FileError>;

    explicit FolderFiles(std::filesystem::path folder, FolderUse use = FolderUse::writes);

    const std::filesystem::path& folder() const { return folder_; }

    // When the making of a file begins, for make().
    Cancellations begin() const { return cancellations_; }

    // A file of that name, which is one that cleanedFileName gives, or the next free name. Gives its path.
    // Ends soon after a cancelAll() that came after `begun`.
    Result<std::filesystem::path, Failure> make(const std::string& name, Cancellations begun,
                                                const Content& content);

    // Ends what is under way.
    void cancelAll() { ++cancellations_; }

    // The same for what comes later too.
    void close() { isClosed_ = true; }

    bool isCancelled(Cancellations begun) const { return isClosed_ || cancellations_ != begun; }

    // The files that were made, in order; of a plan, those that would be.
    std::vector<std::filesystem::path> files() const { return files_.value(); }

    // Why the last file that could not be made was not.
    std::optional<FileError> lastError() const { return lastError_.value(); }

  private:
    Result<std::filesystem::path, FileError> written(const std::string& name, Cancellations begun,
                                                     const Content& content);
    Result<std::filesystem::path, FileError> planned(const std::string& name) const;
    bool isTaken(const std::filesystem::path& file) const;

    const std::filesystem::path folder_;
    const FolderUse use_;
    std::atomic<Cancellations> cancellations_ = 0;
    std::atomic<bool> isClosed_ = false;
    Protected<std::vector<std::filesystem::path>> files_;
    Protected<std::optional<FileError>> lastError_;
};

} // namespace zelto
