#pragma once

#include <ZeltoIntegrations/Client/FileDownload.h>

#include <Platform/Operations/Progress.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace zelto {

// What the caller of downloadFiles() holds: how many bytes have come, and the way to cancel. The total is
// that of all files; it is -1, and the progress indeterminate, until the service has said the size of each.
// Of a file that fails, what came of it counts. Always made with std::make_shared.
class ImportProgress final : public Progress {
  public:
    // Called whenever bytes have come or a file has ended, on the thread that delivers them: of several files
    // at once, also on several threads at once. What it throws is contained.
    using Handler = std::function<void(const ImportProgress&)>;

    explicit ImportProgress(std::size_t fileCount);

    // For the changes from now on. Any thread.
    void setProgressHandler(Handler handler);

    std::size_t fileCount() const;
    // Those that have come or failed.
    std::size_t endedFileCount() const;

    // By whoever downloads.
    void setBytes(std::size_t file, const DownloadedBytes& bytes);
    void endFile(std::size_t file);

  private:
    struct File {
        DownloadedBytes bytes;
        bool hasEnded = false;
    };

    void setFile(std::size_t index, const DownloadedBytes& bytes, bool hasEnded);
    void count(const File& file, std::int64_t times);
    std::int64_t countable(std::uint64_t bytes) const;

    mutable std::mutex lock_; // guards what follows
    std::vector<File> files_;
    std::int64_t receivedBytes_ = 0;
    std::int64_t expectedBytes_ = 0; // of the files whose size is known
    std::int64_t unknownSizes_ = 0;
    std::int64_t endedFiles_ = 0;
    Handler handler_;
};

} // namespace zelto
