#include "Support/ServiceServer.h"

#include <regex>

namespace zelto {

std::optional<std::string> uploadedFile(const ReceivedRequest& request) {
    constexpr std::string_view label = "filename=\"";
    const auto found = request.body.find(label);
    if (found == std::string::npos) {
        return std::nullopt;
    }
    const auto start = found + label.size();
    return request.body.substr(start, request.body.find('"', start) - start);
}

std::string withoutBoundary(const std::string& text) {
    static const std::regex boundary("Boundary-[0-9A-Fa-f-]{36}");
    return std::regex_replace(text, boundary, "B");
}

} // namespace zelto
