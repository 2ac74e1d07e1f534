#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelto::cli {

// What --keychain chooses among.
enum class KeyChainKind { secretService, file, memory };

// The option's word for it, which is also kept beside what was stored: "secret-service".
std::string nameOfKind(KeyChainKind kind);
std::optional<KeyChainKind> kindNamed(std::string_view name);

} // namespace zelto::cli
