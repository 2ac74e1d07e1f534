#include <ZeltoIntegrations/Client/DownloadSession.h>

#include <cstdint>
#include <limits>
#include <map>
#include <mutex>
#include <utility>

namespace zelto {

namespace {

URLSessionConfiguration unlimited(URLSessionConfiguration configuration) {
    configuration.maximumResponseSize = std::numeric_limits<std::uint64_t>::max();
    return configuration;
}

} // namespace

class DownloadSession::Dispatcher final : public URLSessionDataDelegate {
  public:
    void add(std::int64_t taskIdentifier, std::shared_ptr<URLSessionDataDelegate> delegate) {
        const std::lock_guard guard(lock_);
        delegates_.emplace(taskIdentifier, std::move(delegate));
    }

    URLSessionResponseDisposition
    didReceiveResponse(URLSessionDataTask& task,
                       const std::shared_ptr<const URLResponse>& response) override {
        return delegateOf(task)->didReceiveResponse(task, response);
    }

    void didReceiveData(URLSessionDataTask& task, std::span<const std::uint8_t> data) override {
        delegateOf(task)->didReceiveData(task, data);
    }

    void didComplete(URLSessionDataTask& task, const std::optional<URLError>& error) override {
        std::unique_lock guard(lock_);
        const auto last = delegates_.extract(task.taskIdentifier());
        guard.unlock();
        last.mapped()->didComplete(task, error);
    }

  private:
    std::shared_ptr<URLSessionDataDelegate> delegateOf(const URLSessionDataTask& task) {
        const std::lock_guard guard(lock_);
        return delegates_.at(task.taskIdentifier());
    }

    std::mutex lock_;
    std::map<std::int64_t, std::shared_ptr<URLSessionDataDelegate>> delegates_; // by task
};

DownloadSession::DownloadSession(URLSessionConfiguration configuration)
    : dispatcher_(std::make_shared<Dispatcher>()),
      session_(unlimited(std::move(configuration)), dispatcher_) {}

std::shared_ptr<URLSessionDataTask>
DownloadSession::dataTask(URLRequest request, std::shared_ptr<URLSessionDataDelegate> delegate) {
    auto task = session_.dataTask(std::move(request));
    dispatcher_->add(task->taskIdentifier(), std::move(delegate)); // no event comes before it is resumed
    return task;
}

} // namespace zelto
