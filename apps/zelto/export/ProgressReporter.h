#pragma once

#include "base/ProgressBar.h"
#include "base/Terminal.h"

#include <ZeltoIntegrations/Export/ExportProgress.h>

#include <memory>
#include <mutex>
#include <string>

namespace zelto::cli {

// Shows the progress of an export on standard error: a bar that is gone at the end, or {"progress":0.25}
// lines.
class ProgressReporter {
  public:
    ProgressReporter(ProgressStyle style, const Terminal& terminal) : style_(style), terminal_(terminal) {}

    // Shows the present progress, and each change until the end.
    void follow(const std::shared_ptr<ExportProgress>& progress) const;
    void end() const;

  private:
    struct Shown {
        std::mutex lock;
        float fraction = -1;
        bool hasEnded = false;
    };

    // A fraction below one that was shown is left out: changes may come while follow runs.
    void show(float fraction) const;

    ProgressStyle style_;
    Terminal terminal_;
    std::shared_ptr<Shown> shown_ = std::make_shared<Shown>();
};

} // namespace zelto::cli
