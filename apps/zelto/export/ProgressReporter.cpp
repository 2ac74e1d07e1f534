#include "export/ProgressReporter.h"

#include <Platform/JSON/JSONValue.h>

#include <algorithm>
#include <cmath>

namespace zelto::cli {

namespace {

constexpr int barWidth = 30;
constexpr auto startOfLine = "\r";
constexpr auto clearLine = "\r\x1b[K";
constexpr auto green = "\x1b[32m";
constexpr auto plain = "\x1b[0m";

std::string bar(float fraction, bool usesColour) {
    const int filled = std::clamp(static_cast<int>(std::lround(fraction * barWidth)), 0, barWidth);
    std::string text = "[";
    text += usesColour ? green : "";
    text.append(static_cast<std::size_t>(filled), '#');
    text += usesColour ? plain : "";
    text.append(static_cast<std::size_t>(barWidth - filled), ' ');
    return text + "] " + std::to_string(std::lround(fraction * 100)) + " %";
}

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
            writeError(startOfLine + bar(fraction, terminal_.usesColour));
        }
        return;
    case ProgressStyle::json:
        return writeError(jsonLine(fraction));
    case ProgressStyle::none:
        return;
    }
}

} // namespace zelto::cli
