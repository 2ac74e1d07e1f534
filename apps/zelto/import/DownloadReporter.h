#pragma once

#include "base/ProgressBar.h"
#include "base/Terminal.h"

#include <ZeltoIntegrations/Import/ImportProgress.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace zelto::cli {

// A number of bytes as people read it: "999 B", "1.5 kB", "20.0 MB".
std::string shownBytes(std::uint64_t bytes);

// How far downloads are after that time, in one line: "[###   ] 30 %  3.0 of 10.0 MB, 1.5 MB/s, 5 s left";
// and "3.0 MB, 1.5 MB/s" where the size of a file is not known.
std::string downloadLine(std::int64_t received, std::optional<std::int64_t> total,
                         std::chrono::milliseconds elapsed, bool usesColour);

// Shows the progress of downloads on standard error: one bar for all files, which is gone at the end, or
// lines like {"received":3000,"total":10000} (without "total" while it is not known). At most ten a second.
// Any thread.
class DownloadReporter {
  public:
    DownloadReporter(ProgressStyle style, const Terminal& terminal) : style_(style), terminal_(terminal) {}

    // Shows each change until the end.
    void follow(ImportProgress& progress) const;
    void end() const;

  private:
    using Clock = std::chrono::steady_clock;

    struct Shown {
        std::mutex lock;
        const Clock::time_point start = Clock::now();
        std::optional<Clock::time_point> last;
        bool hasEnded = false;
    };

    void show(const ImportProgress& progress) const;

    ProgressStyle style_;
    Terminal terminal_;
    std::shared_ptr<Shown> shown_ = std::make_shared<Shown>();
};

} // namespace zelto::cli
