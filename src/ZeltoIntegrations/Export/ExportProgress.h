#pragma once

#include <Platform/Operations/Progress.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

namespace zelto {

// What the caller of an export holds: how far it is, and the way to cancel it.
class ExportProgress final : public Progress {
  public:
    // Gets the fraction done, from 0 to 1, on the thread that counts: in an export a queue's thread. What it
    // throws is contained.
    using Handler = std::function<void(float)>;

    // A child of the thread's current progress, if there is one.
    explicit ExportProgress(std::int64_t totalUnitCount);

    explicit ExportProgress(const std::shared_ptr<Progress>& parent) : Progress(parent) {}

    // Called at each count of completed units from now on. Any thread.
    void setProgressHandler(Handler handler);
    Handler progressHandler() const;

    void setCompletedUnitCount(std::int64_t count) override;

  private:
    mutable std::mutex lock_;
    Handler handler_;
};

} // namespace zelto
