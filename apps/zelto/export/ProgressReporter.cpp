#include "export/ProgressReporter.h"

#include <Platform/JSON/JSONValue.h>

#include <cmath>

namespace zelto::cli {

namespace {

std::string jsonLine(float fraction) {
    JSONObject line;
    // Two digits are enough; more would show the rounding error of the float.
    line.set("progress", std::round(static_cast<double>(fraction) * 100) / 100);
    return JSONValue(std::move(line)).text().value() + "\n";
}

} // namespace

void ProgressReporter::follow(const std::shared_ptr<ExportProgress>& progress) const {
    if (progress->totalUnitCount() > 0) {
        show(0);
    }
    // A step that a cancelled export does not wait for may count after its end.
    progress->setProgressHandler([self = *this](float fraction) { self.show(fraction); });
    if (progress->totalUnitCount() > 0) {
        show(static_cast<float>(progress->fractionCompleted()));
    }
}

void ProgressReporter::end() const {
    const std::lock_guard guard(shown_->lock);
    shown_->hasEnded = true;
    if (style_ == ProgressStyle::bar && terminal_.showsBar) {
        writeError(clearLine);
    }
}

void ProgressReporter::show(float fraction) const {
    const std::lock_guard guard(shown_->lock);
    if (shown_->hasEnded || fraction <= shown_->fraction) {
        return;
    }
    shown_->fraction = fraction;
    switch (style_) {
    case ProgressStyle::bar:
        if (terminal_.showsBar) {
            writeError(std::string(startOfLine) + progressBar(fraction, terminal_.usesColour));
        }
        return;
    case ProgressStyle::json:
        return writeError(jsonLine(fraction));
    case ProgressStyle::none:
        return;
    }
}

} // namespace zelto::cli
