#include <ZeltoIntegrations/Client/FileDownload.h>

#include <Platform/Numbers.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

namespace zelto {

namespace {

constexpr std::size_t maximumErrorBody = std::size_t{1} << 20;

// Null for any other response: of those of success only this one brings a whole file.
const HTTPURLResponse* responseWithFile(const std::shared_ptr<const URLResponse>& response) {
    constexpr int ok = 200;
    const auto* http = dynamic_cast<const HTTPURLResponse*>(response.get());
    return http && http->statusCode() == ok ? http : nullptr;
}

// The length counts what is sent, which is not the file where it is compressed, and counts nothing where it
// is sent in chunks.
std::optional<std::uint64_t> expectedSize(const HTTPURLResponse& response) {
    const auto length = response.header("Content-Length");
    if (!length || response.header("Content-Encoding") || response.header("Transfer-Encoding")) {
        return std::nullopt;
    }
    // The transport passes over a length that is too large for it, or not the only one. No file has it.
    return numberIn<std::uint64_t>(*length).value_or(std::numeric_limits<std::uint64_t>::max());
}

} // namespace

// Of one try.
class FileDownload::Delegate final : public URLSessionDataDelegate {
  public:
    Delegate(std::shared_ptr<FileDownload> download, DataTaskCompletion completion)
        : download_(std::move(download)), completion_(std::move(completion)) {}

    URLSessionResponseDisposition
    didReceiveResponse(URLSessionDataTask&, const std::shared_ptr<const URLResponse>& response) override {
        response_ = response;
        const auto* begun = responseWithFile(response);
        isFile_ = begun != nullptr;
        endsEarly_ = isFile_ && !download_->begin(*begun);
        return endsEarly_ ? URLSessionResponseDisposition::cancel : URLSessionResponseDisposition::allow;
    }

    void didReceiveData(URLSessionDataTask& task, std::span<const std::uint8_t> data) override {
        endsEarly_ = isFile_ ? !download_->append(data) : !keep(data);
        if (endsEarly_) {
            task.cancel();
        }
    }

    // A task that was ended from here has got its response.
    void didComplete(URLSessionDataTask&, const std::optional<URLError>& error) override {
        auto completion = std::move(completion_);
        if (error && !endsEarly_) {
            return completion(std::nullopt, response_, error);
        }
        completion(std::move(errorBody_), response_, std::nullopt);
    }

  private:
    // False if there is more than is kept.
    bool keep(std::span<const std::uint8_t> data) {
        const auto kept = data.first(std::min(data.size(), maximumErrorBody - errorBody_.size()));
        errorBody_.insert(errorBody_.end(), kept.begin(), kept.end());
        return kept.size() == data.size();
    }

    const std::shared_ptr<FileDownload> download_;
    DataTaskCompletion completion_;
    std::shared_ptr<const URLResponse> response_;
    bool isFile_ = false;
    bool endsEarly_ = false;
    Data errorBody_;
};

FileDownload::FileDownload(std::shared_ptr<DownloadSession> session, std::filesystem::path goal,
                           DownloadProgress onBytes)
    : session_(std::move(session)), goal_(std::move(goal)), onBytes_(std::move(onBytes)) {}

std::shared_ptr<URLSessionDataTask> FileDownload::makeTask(URLRequest request,
                                                           DataTaskCompletion completion) {
    return session_->dataTask(std::move(request),
                              std::make_shared<Delegate>(shared_from_this(), std::move(completion)));
}

DownloadResult FileDownload::end(const ServiceResult<ServiceResponse>& result) {
    auto file = std::exchange(file_, std::nullopt);
    if (!result) {
        return failure(DownloadError{result.error(), std::nullopt, refusal_});
    }
    if (error_) {
        return failure(DownloadError{ServiceClientError::internalError, error_});
    }
    if (!file) {
        return failure(DownloadError{ServiceClientError::dataParseError});
    }
    if (bytes_.received != bytes_.expected.value_or(bytes_.received)) {
        return failure(DownloadError{ServiceClientError::connectionError});
    }
    auto path = file->finish();
    if (!path) {
        return failure(DownloadError{ServiceClientError::internalError, std::move(path.error())});
    }
    return *std::move(path);
}

bool FileDownload::begin(const HTTPURLResponse& response) {
    auto created = DownloadedFile::create(goal_);
    if (!created) {
        error_ = std::move(created.error());
        return false;
    }
    file_.emplace(*std::move(created));
    bytes_ = {.received = 0, .expected = expectedSize(response)};
    report();
    return true;
}

bool FileDownload::append(std::span<const std::uint8_t> bytes) {
    if (auto written = file_->append(bytes); !written) {
        error_ = std::move(written.error());
        return false;
    }
    bytes_.received += bytes.size();
    report();
    return true;
}

void FileDownload::report() const {
    if (onBytes_) {
        onBytes_(bytes_);
    }
}

} // namespace zelto
