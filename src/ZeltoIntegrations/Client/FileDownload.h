#pragma once

#include <Platform/Completion.h>
#include <Platform/FileError.h>
#include <ZeltoIntegrations/Client/DownloadSession.h>
#include <ZeltoIntegrations/Client/DownloadedFile.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Client/ServiceOutcome.h>
#include <ZeltoIntegrations/Client/ServiceRefusal.h>

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
    ServiceRefusal refusal = {}; // of a request that failed

    bool operator==(const DownloadError&) const = default;
};

using DownloadResult = Result<std::filesystem::path, DownloadError>;

template <> struct DroppedValue<DownloadResult> {
    static DownloadResult value() { return failure(DownloadError{}); }
};

using DownloadCompletion = Completion<std::filesystem::path, DownloadError>;

// How much of a file has come.
struct DownloadedBytes {
    std::uint64_t received = 0; // after decompression
    // Of the whole file, if the service says it: no value for a compressed response.
    std::optional<std::uint64_t> expected = std::nullopt;

    bool operator==(const DownloadedBytes&) const = default;
};

// Called when the file begins and whenever more of it has come, on the thread on which the session delivers.
using DownloadProgress = std::function<void(const DownloadedBytes&)>;

// A response that goes to a file as it comes, for one request however often it is tried. The body of any
// response but 200 goes into memory, of which at most 1 MiB is kept; another response of success brings no
// file, and is a `dataParseError`.
class FileDownload : public std::enable_shared_from_this<FileDownload> {
  public:
    FileDownload(std::shared_ptr<DownloadSession> session, std::filesystem::path goal,
                 DownloadProgress onBytes);

    // A task that sends the request and ends as one of a session would; the body of a success that it ends
    // with is empty.
    std::shared_ptr<URLSessionDataTask> makeTask(URLRequest request, DataTaskCompletion completion);

    // What is known of a failure, before its end.
    void note(const ServiceRefusal& refusal) { refusal_ = refusal; }

    // What the end of the last try means. Whatever has come is at its place or removed after that.
    DownloadResult end(const ServiceResult<ServiceResponse>& result);

  private:
    class Delegate;

    bool begin(const HTTPURLResponse& response);
    bool append(std::span<const std::uint8_t> bytes);
    void report() const;

    const std::shared_ptr<DownloadSession> session_;
    const std::filesystem::path goal_;
    const DownloadProgress onBytes_;
    std::optional<DownloadedFile> file_; // since a response with one has begun
    std::optional<FileError> error_;
    DownloadedBytes bytes_;
    ServiceRefusal refusal_;
};

} // namespace zelto
