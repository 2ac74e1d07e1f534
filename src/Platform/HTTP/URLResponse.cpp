#include <Platform/HTTP/URLResponse.h>

namespace zelto {
namespace {

// A query may contain a credential.
std::string_view withoutQuery(const URL& url) {
    const std::string_view text = url.absoluteString();
    return text.substr(0, text.find_first_of("?#"));
}

} // namespace

std::string URLResponse::description() const {
    return "response from " + std::string(withoutQuery(url_));
}

std::string HTTPURLResponse::description() const {
    return "HTTP " + std::to_string(statusCode_) + " " + URLResponse::description();
}

} // namespace zelto
