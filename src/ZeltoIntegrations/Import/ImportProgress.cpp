#include <ZeltoIntegrations/Import/ImportProgress.h>

#include <Platform/Operations/ContainedException.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace zelto {

namespace {

constexpr std::int64_t unknownTotal = -1;

} // namespace

ImportProgress::ImportProgress(std::size_t fileCount)
    : files_(fileCount), unknownSizes_(static_cast<std::int64_t>(fileCount)) {
    setTotalUnitCount(fileCount == 0 ? 0 : unknownTotal);
}

void ImportProgress::setProgressHandler(Handler handler) {
    const std::lock_guard guard(lock_);
    handler_ = std::move(handler);
}

std::size_t ImportProgress::fileCount() const {
    const std::lock_guard guard(lock_);
    return files_.size();
}

std::size_t ImportProgress::endedFileCount() const {
    const std::lock_guard guard(lock_);
    return static_cast<std::size_t>(endedFiles_);
}

void ImportProgress::setBytes(std::size_t file, const DownloadedBytes& bytes) {
    setFile(file, bytes, false);
}

void ImportProgress::endFile(std::size_t file) {
    std::unique_lock guard(lock_);
    const auto received = files_[file].bytes.received;
    guard.unlock();
    setFile(file, {.received = received, .expected = received}, true);
}

void ImportProgress::setFile(std::size_t index, const DownloadedBytes& bytes, bool hasEnded) {
    std::unique_lock guard(lock_);
    auto& file = files_[index];
    count(file, -1);
    file = {bytes, hasEnded};
    count(file, 1);
    setTotalUnitCount(unknownSizes_ == 0 ? expectedBytes_ : unknownTotal);
    setCompletedUnitCount(receivedBytes_);
    const auto handler = handler_;
    guard.unlock();
    if (handler) {
        containingExceptions("A progress handler", [&] { handler(*this); });
    }
}

void ImportProgress::count(const File& file, std::int64_t times) {
    const auto& [received, expected] = file.bytes;
    receivedBytes_ += times * countable(received);
    expectedBytes_ += times * countable(expected.value_or(0));
    unknownSizes_ += expected ? 0 : times;
    endedFiles_ += file.hasEnded ? times : 0;
}

// A service may say any size; this way the sum over all files is a number.
std::int64_t ImportProgress::countable(std::uint64_t bytes) const {
    const auto maximum = std::numeric_limits<std::int64_t>::max() / static_cast<std::int64_t>(files_.size());
    return static_cast<std::int64_t>(std::min(bytes, static_cast<std::uint64_t>(maximum)));
}

} // namespace zelto
