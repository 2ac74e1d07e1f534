#include "accounts/KeyChainKind.h"

namespace zelto::cli {

std::string nameOfKind(KeyChainKind kind) {
    switch (kind) {
    case KeyChainKind::secretService:
        return "secret-service";
    case KeyChainKind::file:
        return "file";
    case KeyChainKind::memory:
        return "memory";
    }
    return {};
}

std::optional<KeyChainKind> kindNamed(std::string_view name) {
    for (const auto kind : {KeyChainKind::secretService, KeyChainKind::file, KeyChainKind::memory}) {
        if (name == nameOfKind(kind)) {
            return kind;
        }
    }
    return std::nullopt;
}

} // namespace zelto::cli
