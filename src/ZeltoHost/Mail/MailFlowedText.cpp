#include <ZeltoHost/Mail/MailFlowedText.h>

#include <algorithm>

namespace zelto {

std::string unfoldedFlowedText(std::string_view text, bool delSp) {
    std::string result;
    bool continues = false; // the previous line ended with a soft break
    std::size_t depthBefore = 0;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const bool broken = end != std::string_view::npos;
        auto line = text.substr(0, end);
        text.remove_prefix(broken ? end + 1 : text.size());

        const auto depth = std::min(line.find_first_not_of('>'), line.size());
        line.remove_prefix(depth);
        if (line.starts_with(' ')) {
            line.remove_prefix(1);
        }
        if (continues && depth != depthBefore) {
            result += '\n';
            continues = false;
        }
        if (!continues && depth > 0) {
            result.append(depth, '>');
            result += line.empty() ? "" : " ";
        }
        const bool signature = line == "-- ";
        continues = broken && !signature && line.ends_with(' ');
        result.append(line.substr(0, line.size() - (continues && delSp ? 1 : 0)));
        result += broken && !continues ? "\n" : "";
        depthBefore = depth;
    }
    return result;
}

} // namespace zelto
