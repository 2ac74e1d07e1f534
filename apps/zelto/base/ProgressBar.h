#pragma once

#include <string>
#include <string_view>

namespace zelto::cli {

enum class ProgressStyle { bar, json, none };

// What goes before each state of a line that is written over, and what clears it.
inline constexpr std::string_view startOfLine = "\r";
inline constexpr std::string_view clearLine = "\r\x1b[K";

// "[#####     ] 50 %"
std::string progressBar(double fraction, bool usesColour);

} // namespace zelto::cli
