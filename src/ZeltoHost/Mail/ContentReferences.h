#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace zelto {

// Which of the known content ids "cid:" URLs (RFC 2392) in attributes and styles of an HTML text have.
std::set<std::string> referredContentIDs(std::string_view html, const std::set<std::string>& known);

// The content id of a "cid:" URL; `nullopt` for any other URL.
std::optional<std::string> contentIDOf(std::string_view url);

} // namespace zelto
