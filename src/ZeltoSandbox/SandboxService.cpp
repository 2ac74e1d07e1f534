#include <ZeltoSandbox/SandboxService.h>

#include <Platform/Numbers.h>

#include <algorithm>

namespace zelto::sandbox {

std::optional<std::size_t> pageLimit(std::string_view text, std::size_t minimum, std::size_t maximum) {
    const auto limit = numberIn<std::size_t>(text);
    return limit && *limit >= minimum && *limit <= maximum ? limit : std::nullopt;
}

SandboxResponse SandboxService::failure(int status) const {
    return SandboxResponse::text(std::string(reasonPhrase(status)), status);
}

bool pathFits(std::string_view pattern, const std::vector<std::string>& segments) {
    std::size_t index = 0;
    while (!pattern.empty()) {
        const auto end = std::min(pattern.find('/'), pattern.size());
        const auto part = pattern.substr(0, end);
        if (index == segments.size() || (part != "*" && part != segments[index])) {
            return false;
        }
        ++index;
        pattern.remove_prefix(std::min(end + 1, pattern.size()));
    }
    return index == segments.size();
}

} // namespace zelto::sandbox
