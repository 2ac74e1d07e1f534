#include <ZeltoSandbox/ServicePage.h>

#include <Platform/Text.h>

#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumShown = 200;

} // namespace

std::string shownText(std::string_view text) {
    std::string html;
    for (const char c : escapeControlCharacters(prefixCharacters(text, maximumShown))) {
        switch (c) {
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '&':
            html += "&amp;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            html.push_back(c);
        }
    }
    return html;
}

SandboxResponse servicePage(std::string_view service, const std::string& content, int status,
                            const std::string& formTargets) {
    const auto name = shownText(service);
    auto html = "<!doctype html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
                "<meta name=\"viewport\" content=\"width=device-width\"><title>" +
                name +
                " (sandbox)</title><link rel=\"stylesheet\" href=\"/consent.css\"></head><body><main><p "
                "class=\"service\">" +
                name + " <span>sandbox</span></p>" + content + "</main></body></html>\n";
    return SandboxResponse::html(std::move(html), status)
        .with("Content-Security-Policy", "default-src 'none'; style-src 'self'; base-uri 'none'; "
                                         "frame-ancestors 'none'; form-action " +
                                             formTargets);
}

} // namespace zelto::sandbox
