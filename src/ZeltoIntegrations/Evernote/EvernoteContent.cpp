#include <ZeltoIntegrations/Evernote/EvernoteContent.h>

#include <Platform/Text.h>

namespace zelto {

namespace {

enum class LineEnds { keep, asBreaks };

std::string escaped(std::string_view plain, LineEnds lineEnds) {
    std::string html;
    html.reserve(plain.size());
    for (const char each : plain) {
        if (each == '<') {
            html += "&lt;";
        } else if (each == '>') {
            html += "&gt;";
        } else if (each == '"') {
            html += "&quot;";
        } else if (each == '\n' && lineEnds == LineEnds::asBreaks) {
            html += "<br/>";
        } else {
            html += each;
        }
    }
    return html;
}

} // namespace

std::string htmlRemark(const std::optional<std::string>& remark) {
    const auto text = trimmed(remark ? std::string_view(*remark) : std::string_view());
    if (text.empty()) {
        return {};
    }
    return "<p style='white-space:pre;'>" + escaped(text, LineEnds::asBreaks) + "<br/></p><hr/><br/>";
}

std::string htmlLink(std::string_view url) {
    const auto written = escaped(url, LineEnds::keep);
    return "<a href=\"" + written + "\">" + written + "</a>";
}

} // namespace zelto
