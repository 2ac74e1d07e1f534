#pragma once

#include "base/Terminal.h"

#include <ZeltoIntegrations/Export/ExportProgress.h>

#include <memory>
#include <mutex>
#include <string>

namespace zelto::cli {

enum class ProgressStyle { bar, json, none };

// Shows the progress of an export on standard error: a bar that is gone at the end, or {"progress":0.25}
// lines.
class ProgressReporter {
  public:
    ProgressReporter(ProgressStyle style, const Terminal& terminal) : style_(style), terminal_(terminal) {}

    // Shows where the progress stands, and each step that follows until the end.
    void follow(const std::shared_ptr<ExportProgress>& progress) const;
    void end() const;

  private:
    struct Shown {
        std::mutex lock;
        float fraction = -1;
        bool hasEnded = false;
    };

    // Steps that have passed already are not shown: the first ones may come while follow is on its way.
    void show(float fraction) const;

    ProgressStyle style_;
    Terminal terminal_;
    std::shared_ptr<Shown> shown_ = std::make_shared<Shown>();
};

} // namespace zelto::cli
