#pragma once

#include <Platform/Completion.h>
#include <Platform/FileError.h>
#include <Platform/HTTP/URLSession.h>
#include <ZeltoIntegrations/Client/DownloadedFile.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Client/ServiceOutcome.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace zelto {

// Why there is no file.
struct DownloadError {
    ServiceClientError service = ServiceClientError::internalError; // of the request
    // The request succeeded, but the file could not be written; `service` is then `internalError`.
    std::optional<FileError> file = std::nullopt;

    bool operator==(const DownloadError&) const = default;
};

using DownloadResult = Result<std::filesystem::path, DownloadError>;

template <> struct DroppedValue<DownloadResult> {
    static DownloadResult value() { return failure(DownloadError{}); }
};

using DownloadCompletion = Completion<std::filesystem::path, DownloadError>;

// Called with the bytes of the file that have come so far, after decompression; on the thread on which the
// session delivers.
using DownloadProgress = std::function<void(std::uint64_t bytes)>;

// A response that goes to a file as it comes, for one request however often it is tried. The body of a
// response that is no success goes into memory, of which at most 1 MiB is kept.
class FileDownload : public std::enable_shared_from_this<FileDownload> {
  public:
    FileDownload(std::filesystem::path goal, DownloadProgress onBytes);

    // A task that sends the request and ends as one of a session would; the body of a success that it ends
    // with is empty. It has a session of its own, without a limit on the size of a response.
    std::shared_ptr<URLSessionDataTask> makeTask(URLSessionConfiguration configuration, URLRequest request,
                                                 DataTaskCompletion completion);

    // What the end of the last try means. Whatever has come is at its place or removed after that.
    DownloadResult end(const ServiceResult<ServiceResponse>& result);

  private:
    class Delegate;

    bool begin();
    bool append(std::span<const std::uint8_t> bytes);

    const std::filesystem::path goal_;
    const DownloadProgress onBytes_;
    std::optional<DownloadedFile> file_; // since a response of success has begun
    std::optional<FileError> error_;
    std::uint64_t received_ = 0;
};

} // namespace zelto
