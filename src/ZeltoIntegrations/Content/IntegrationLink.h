#pragma once

#include <Platform/Enum.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace zelto {

// The syntax a link is written in; `mrkdwn` is Slack's dialect.
enum class IntegrationLinkFormat : int { raw, html, markdown, mrkdwn };
ZELTO_ENUM(IntegrationLinkFormat);

// Who may open a web link. Coded as its number.
enum class IntegrationWebLinkVisibility : int { onlyMe = 0, anyone = 1, team = 2 };
ZELTO_ENUM(IntegrationWebLinkVisibility);

// Which link to the message is asked for, and in which form.
struct IntegrationLinkType {
    // Opens the message in the user's own client.
    struct Backlink {
        IntegrationLinkFormat format;
        bool operator==(const Backlink&) const = default;
    };

    // The alternative form of it.
    struct AltBacklink {
        IntegrationLinkFormat format;
        bool operator==(const AltBacklink&) const = default;
    };

    // Works on the web.
    struct WebLink {
        IntegrationLinkFormat format;
        IntegrationWebLinkVisibility visibility;
        std::optional<std::uint64_t> teamId;
        bool operator==(const WebLink&) const = default;
    };

    // A backlink for places that would mangle the plain form.
    struct SafeBacklink {
        IntegrationLinkFormat format;
        bool operator==(const SafeBacklink&) const = default;
    };

    std::variant<Backlink, AltBacklink, WebLink, SafeBacklink> value;

    static IntegrationLinkType backlink(IntegrationLinkFormat format) { return {Backlink{format}}; }

    static IntegrationLinkType altBacklink(IntegrationLinkFormat format) { return {AltBacklink{format}}; }

    static IntegrationLinkType webLink(IntegrationLinkFormat format, IntegrationWebLinkVisibility visibility,
                                       std::optional<std::uint64_t> teamId) {
        return {WebLink{format, visibility, teamId}};
    }

    static IntegrationLinkType safeBacklink(IntegrationLinkFormat format) { return {SafeBacklink{format}}; }

    IntegrationLinkFormat format() const {
        return std::visit([](const auto& each) { return each.format; }, value);
    }

    bool operator==(const IntegrationLinkType&) const = default;
};

// A link as its visible text and its address.
struct IntegrationLinkComponents {
    std::string text;
    std::string url;

    bool operator==(const IntegrationLinkComponents&) const = default;
};

} // namespace zelto
