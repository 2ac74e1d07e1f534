#include <ZeltoIntegrations/Evernote/EvernoteContent.h>

#include <ZeltoIntegrations/Helpers/HTMLText.h>

#include <Platform/Text.h>

namespace zelto {

namespace {

// A line may end with CR LF, which is one end.
std::string withBreaks(std::string_view html) {
    std::string lines;
    for (std::size_t at = 0; at < html.size(); ++at) {
        if (html.substr(at).starts_with("\r\n")) {
            continue;
        }
        if (html[at] == '\n') {
            lines += "<br/>";
        } else {
            lines += html[at];
        }
    }
    return lines;
}

} // namespace

std::string htmlRemark(const std::optional<std::string>& remark) {
    const auto text = trimmed(remark ? std::string_view(*remark) : std::string_view());
    if (text.empty()) {
        return {};
    }
    return "<p style='white-space:pre;'>" + withBreaks(htmlText(text, Ampersands::keep)) +
           "<br/></p><hr/><br/>";
}

} // namespace zelto
