#include <ZeltoIntegrations/Client/FileDownload.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

namespace zelto {

namespace {

constexpr std::size_t maximumErrorBody = std::size_t{1} << 20;

bool isResponseOfSuccess(const std::shared_ptr<const URLResponse>& response) {
    const auto* http = dynamic_cast<const HTTPURLResponse*>(response.get());
    return http && isSuccess(http->statusCode());
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
        isFile_ = isResponseOfSuccess(response);
        endsEarly_ = isFile_ && !download_->begin();
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

FileDownload::FileDownload(std::filesystem::path goal, DownloadProgress onBytes)
    : goal_(std::move(goal)), onBytes_(std::move(onBytes)) {}

std::shared_ptr<URLSessionDataTask> FileDownload::makeTask(URLSessionConfiguration configuration,
                                                           URLRequest request,
                                                           DataTaskCompletion completion) {
    configuration.maximumResponseSize = std::numeric_limits<std::uint64_t>::max();
    URLSession session(std::move(configuration),
                       std::make_shared<Delegate>(shared_from_this(), std::move(completion)));
    return session.dataTask(std::move(request));
}

DownloadResult FileDownload::end(const ServiceResult<ServiceResponse>& result) {
    auto file = std::exchange(file_, std::nullopt);
    if (!result) {
        return failure(DownloadError{result.error()});
    }
    if (error_ || !file) {
        return failure(DownloadError{ServiceClientError::internalError, error_});
    }
    auto path = file->finish();
    if (!path) {
        return failure(DownloadError{ServiceClientError::internalError, std::move(path.error())});
    }
    return *std::move(path);
}

bool FileDownload::begin() {
    auto created = DownloadedFile::create(goal_);
    if (!created) {
        error_ = std::move(created.error());
        return false;
    }
    file_.emplace(*std::move(created));
    return true;
}

bool FileDownload::append(std::span<const std::uint8_t> bytes) {
    if (auto written = file_->append(bytes); !written) {
        error_ = std::move(written.error());
        return false;
    }
    received_ += bytes.size();
    if (onBytes_) {
        onBytes_(received_);
    }
    return true;
}

} // namespace zelto
