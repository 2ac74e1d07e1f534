#include <Platform/ASCII.h>
#include <Platform/PercentEncoding.h>
#include <Platform/UTF8.h>
#include <ZeltoHost/Mail/ContentReferences.h>

#include <algorithm>

namespace zelto {

namespace {

constexpr std::string_view scheme = "cid:";
// Limits the work for a text full of URLs without an end.
constexpr std::size_t maxURLLength = 1000;

bool startsWithScheme(std::string_view text) {
    return equalIgnoringASCIICase(text.substr(0, scheme.size()), scheme);
}

// Whether a URL may begin after this text: after a quote, "=" or "(", and blanks.
bool mayBeginURL(std::string_view before) {
    const auto last = before.find_last_not_of(" \t\n");
    before = before.substr(0, last == std::string_view::npos ? 0 : last + 1);
    return !before.empty() && (std::string_view("\"'=(").find(before.back()) != std::string_view::npos ||
                               before.ends_with("&quot;") || before.ends_with("&#39;"));
}

std::string withoutAmpersandEntities(std::string_view text) {
    std::string result(text);
    for (auto at = result.find("&amp;"); at != std::string::npos; at = result.find("&amp;", at + 1)) {
        result.erase(at + 1, 4);
    }
    return result;
}

} // namespace

std::set<std::string> referredContentIDs(std::string_view html, const std::set<std::string>& known) {
    std::set<std::string> ids;
    for (auto at = html.find(':'); at != std::string_view::npos; at = html.find(':', at + 1)) {
        if (at < 3 || !startsWithScheme(html.substr(at - 3)) || !mayBeginURL(html.substr(0, at - 3))) {
            continue;
        }
        auto url = html.substr(at - 3, maxURLLength);
        url = url.substr(0, url.find_first_of("\"'<>) \t\n"));
        url = url.substr(0, std::min(url.find("&quot;"), url.find("&#39;")));
        if (auto id = contentIDOf(withoutAmpersandEntities(url)); id && known.contains(*id)) {
            ids.insert(*std::move(id));
        }
    }
    return ids;
}

std::optional<std::string> contentIDOf(std::string_view url) {
    if (!startsWithScheme(url)) {
        return std::nullopt;
    }
    url.remove_prefix(scheme.size());
    return repairedUTF8(percentDecodeBytes(url).value_or(std::string(url)));
}

} // namespace zelto
