#include "import/DownloadReporter.h"

#include <Platform/JSON/JSONValue.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace zelto::cli {

namespace {

constexpr std::chrono::milliseconds interval{100};
constexpr double minimumSeconds = 0.001; // so that a speed is a number
constexpr std::array units{"B", "kB", "MB", "GB", "TB"};

std::size_t unitFor(double bytes) {
    std::size_t unit = 0;
    for (; bytes >= 999.95 && unit + 1 < units.size(); ++unit) {
        bytes /= 1000;
    }
    return unit;
}

std::string in(std::size_t unit, double bytes) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), unit == 0 ? "%.0f" : "%.1f",
                  bytes / std::pow(1000, static_cast<double>(unit)));
    return text.data();
}

std::string shown(double bytes) {
    const auto unit = unitFor(bytes);
    return in(unit, bytes) + " " + units[unit];
}

// "5 s", "2 min", "3 h"
std::string shownTime(double seconds) {
    constexpr double minute = 60;
    constexpr double hour = 60 * minute;
    const auto count = [](double number) { return std::to_string(std::lround(std::ceil(number))); };
    if (seconds > hour) {
        return count(seconds / hour) + " h";
    }
    return seconds > minute ? count(seconds / minute) + " min" : count(seconds) + " s";
}

std::string jsonLine(std::int64_t received, std::optional<std::int64_t> total) {
    JSONObject line{{"received", received}};
    if (total) {
        line.set("total", *total);
    }
    return JSONValue(std::move(line)).text().value() + "\n";
}

} // namespace

std::string shownBytes(std::uint64_t bytes) {
    return shown(static_cast<double>(bytes));
}

std::string downloadLine(std::int64_t received, std::optional<std::int64_t> total,
                         std::chrono::milliseconds elapsed, bool usesColour) {
    const auto bytes = static_cast<double>(received);
    const auto speed = bytes / std::max(std::chrono::duration<double>(elapsed).count(), minimumSeconds);
    const auto rate = ", " + shown(speed) + "/s";
    if (!total || *total == 0) {
        return shown(bytes) + rate;
    }
    const auto all = static_cast<double>(*total);
    const auto unit = unitFor(all);
    const auto left = speed > 0 && received < *total ? ", " + shownTime((all - bytes) / speed) + " left" : "";
    return progressBar(bytes / all, usesColour) + "  " + in(unit, bytes) + " of " + shown(all) + rate + left;
}

void DownloadReporter::follow(ImportProgress& progress) const {
    progress.setProgressHandler([self = *this](const ImportProgress& changed) { self.show(changed); });
}

void DownloadReporter::end() const {
    const std::lock_guard guard(shown_->lock);
    shown_->hasEnded = true;
    if (style_ == ProgressStyle::bar && terminal_.showsBar) {
        writeError(clearLine);
    }
}

void DownloadReporter::show(const ImportProgress& progress) const {
    const std::lock_guard guard(shown_->lock);
    const auto now = Clock::now();
    const bool isSoon = shown_->last && now < *shown_->last + interval;
    if (shown_->hasEnded || (isSoon && !progress.isFinished())) {
        return;
    }
    shown_->last = now;
    const auto received = progress.completedUnitCount();
    const auto total = progress.isIndeterminate() ? std::nullopt : std::optional(progress.totalUnitCount());
    switch (style_) {
    case ProgressStyle::bar:
        if (terminal_.showsBar) {
            const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(now - shown_->start);
            writeError(std::string(clearLine) + downloadLine(received, total, elapsed, terminal_.usesColour));
        }
        return;
    case ProgressStyle::json:
        return writeError(jsonLine(received, total));
    case ProgressStyle::none:
        return;
    }
}

} // namespace zelto::cli
