#include "base/ProgressBar.h"

#include <algorithm>
#include <cmath>

namespace zelto::cli {

namespace {

constexpr int barWidth = 30;
constexpr auto green = "\x1b[32m";
constexpr auto plain = "\x1b[0m";

} // namespace

std::string progressBar(double fraction, bool usesColour) {
    const int filled = std::clamp(static_cast<int>(std::lround(fraction * barWidth)), 0, barWidth);
    std::string text = "[";
    text += usesColour ? green : "";
    text.append(static_cast<std::size_t>(filled), '#');
    text += usesColour ? plain : "";
    text.append(static_cast<std::size_t>(barWidth - filled), ' ');
    return text + "] " + std::to_string(std::lround(fraction * 100)) + " %";
}

} // namespace zelto::cli
