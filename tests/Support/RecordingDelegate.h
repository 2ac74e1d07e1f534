#pragma once

#include "Support/Completed.h"

#include <Platform/HTTP/URLSession.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace zelto {

// Records the events of a session's tasks, as "<task> response 200", "<task> data …" (consecutive pieces
// joined) and "<task> end" or "<task> end timedOut". The functions, if set, are called within the calls.
class RecordingDelegate final : public URLSessionDataDelegate {
  public:
    std::function<URLSessionResponseDisposition(URLSessionDataTask&)> onResponse;
    std::function<void(URLSessionDataTask&, std::span<const std::uint8_t>)> onData;
    std::function<void(URLSessionDataTask&)> onEnd;
    bool keepsData = true;

    URLSessionResponseDisposition
    didReceiveResponse(URLSessionDataTask& task,
                       const std::shared_ptr<const URLResponse>& response) override {
        const auto& http = dynamic_cast<const HTTPURLResponse&>(*response);
        note(task, "response " + std::to_string(http.statusCode()));
        return onResponse ? onResponse(task) : URLSessionResponseDisposition::allow;
    }

    void didReceiveData(URLSessionDataTask& task, std::span<const std::uint8_t> data) override {
        noteData(task, data);
        if (onData) {
            onData(task, data);
        }
    }

    void didComplete(URLSessionDataTask& task, const std::optional<URLError>& error) override {
        note(task, "end" + (error ? " " + std::string(nameOf(error->code)) : ""));
        if (onEnd) {
            onEnd(task);
        }
        const std::lock_guard guard(lock_);
        if (++ended_ == awaited_) {
            hasEnded_.callback<std::function<void(int)>>()(ended_);
        }
    }

    // Waits until that many tasks have ended; to be called once.
    std::vector<std::string> eventsAfter(int ends) {
        {
            const std::lock_guard guard(lock_);
            awaited_ = ends;
            if (ended_ >= ends) {
                return events_;
            }
        }
        hasEnded_.value();
        return events();
    }

    std::vector<std::string> events() const {
        const std::lock_guard guard(lock_);
        return events_;
    }

  private:
    void note(URLSessionDataTask& task, const std::string& event) {
        const std::lock_guard guard(lock_);
        events_.push_back(std::to_string(task.taskIdentifier()) + " " + event);
    }

    void noteData(URLSessionDataTask& task, std::span<const std::uint8_t> data) {
        const std::lock_guard guard(lock_);
        const auto start = std::to_string(task.taskIdentifier()) + " data ";
        if (events_.empty() || !events_.back().starts_with(start)) {
            events_.push_back(start);
        }
        if (keepsData) {
            events_.back().append(data.begin(), data.end());
        }
    }

    mutable std::mutex lock_;
    std::vector<std::string> events_;
    int ended_ = 0;
    int awaited_ = 0;
    Completed<int> hasEnded_;
};

} // namespace zelto
