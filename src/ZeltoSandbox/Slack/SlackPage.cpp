#include <ZeltoSandbox/Slack/SlackPage.h>

#include <ZeltoSandbox/SandboxService.h>

#include <Platform/Base64.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

std::string cursorOf(std::string_view kind, std::string_view identifier) {
    return base64Encoded(std::string(kind) + ":" + std::string(identifier));
}

// The identifier that a cursor names; empty for a cursor that is not one of this kind.
std::string identifierOf(std::string_view kind, std::string_view cursor) {
    const auto text = base64Decoded(cursor).value_or("");
    const auto identifier = text.substr(std::min(kind.size() + 1, text.size()));
    return cursorOf(kind, identifier) == cursor ? identifier : std::string();
}

} // namespace

Result<SlackPage, SlackError> SlackPage::of(const SlackArguments& arguments,
                                            const std::vector<std::string_view>& identifiers,
                                            std::string_view kind, std::size_t usual) {
    auto limit = std::optional(usual);
    if (const auto text = arguments.text("limit")) {
        limit = pageLimit(*text, 1, maximum);
        if (!limit) {
            return failure(
                SlackError{"invalid_limit", "limit is no number from 1 to 1000: \"" + *text + "\""});
        }
    }
    auto first = identifiers.begin();
    if (const auto cursor = arguments.text("cursor").value_or(""); !cursor.empty()) {
        const auto identifier = identifierOf(kind, cursor);
        first = std::ranges::find(identifiers, std::string_view(identifier));
        if (first == identifiers.end()) {
            return failure(SlackError{"invalid_cursor", "no page begins with the cursor"});
        }
    }
    SlackPage page;
    page.first = static_cast<std::size_t>(first - identifiers.begin());
    page.end = page.first + std::min(*limit, identifiers.size() - page.first);
    if (page.end < identifiers.size()) {
        page.nextCursor = cursorOf(kind, identifiers[page.end]);
    }
    return page;
}

} // namespace zelto::sandbox
