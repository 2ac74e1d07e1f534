#include <Platform/PercentEncoding.h>
#include <ZeltoHost/HTML/PlainText.h>
#include <ZeltoHost/Interactor/MessageLinks.h>

#include <Platform/ASCII.h>

namespace zelto {

namespace {

std::string replacingEach(std::string_view text, std::string_view characters, auto replacement) {
    std::string result;
    for (const char c : text) {
        if (characters.find(c) == std::string_view::npos) {
            result += c;
        } else {
            result += replacement(c);
        }
    }
    return result;
}

std::string percentEncodedEach(std::string_view url, std::string_view characters) {
    return replacingEach(url, characters, [](char c) {
        return percentEncodeBytes({&c, 1}, AllowedCharacters::alphanumerics);
    });
}

// "$", "+", "=", "!" and the like are allowed in ids and in URLs, but "(", ")", "'", "*", "&" and ";" would
// have to be escaped again wherever a link is written.
std::string escapedMessageID(std::string_view id) {
    static constexpr std::string_view kept = "-._~@$+=!";
    std::string result;
    for (const char c : id) {
        if (isASCIIAlphanumeric(c) || kept.find(c) != std::string_view::npos) {
            result += c;
        } else {
            result += percentEncodeBytes({&c, 1}, AllowedCharacters::alphanumerics);
        }
    }
    return result;
}

std::string slackEscaped(std::string_view text) {
    return replacingEach(text, "&<>", [](char c) {
        return std::string(c == '&' ? "&amp;" : c == '<' ? "&lt;" : "&gt;");
    });
}

} // namespace

std::optional<IntegrationLinkComponents> MessageLinks::components(const IntegrationLinkType& type) const {
    struct Chooser {
        const MessageLinks& links;

        const auto& operator()(const IntegrationLinkType::Backlink&) const { return links.backlink; }

        const auto& operator()(const IntegrationLinkType::AltBacklink&) const { return links.altBacklink; }

        const auto& operator()(const IntegrationLinkType::WebLink&) const { return links.webLink; }

        const auto& operator()(const IntegrationLinkType::SafeBacklink&) const { return links.safeBacklink; }
    };

    const auto& url = std::visit(Chooser{*this}, type.value);
    return url ? std::optional(IntegrationLinkComponents{text, *url}) : std::nullopt;
}

std::optional<std::string> MessageLinks::written(const IntegrationLinkType& type) const {
    const auto link = components(type);
    return link ? std::optional(writtenLink(*link, type.format())) : std::nullopt;
}

std::string MessageLinks::appended(std::string body, const std::optional<IntegrationLinkType>& type) const {
    if (type && type->format() == IntegrationLinkFormat::mrkdwn) {
        body = slackEscaped(body);
    }
    if (const auto link = type ? written(*type) : std::nullopt) {
        body.append(body.empty() ? "" : "\n\n").append(*link);
    }
    return body;
}

MessageLinks linksToMail(const std::optional<std::string>& messageID) {
    if (!messageID) {
        return {};
    }
    MessageLinks links;
    const auto id = escapedMessageID(*messageID);
    links.backlink = "mid:" + id;
    links.altBacklink = "message:%3C" + id + "%3E";
    links.safeBacklink = "mid:" + percentEncodedEach(id, "_~");
    return links;
}

std::string writtenLink(const IntegrationLinkComponents& link, IntegrationLinkFormat format) {
    switch (format) {
    case IntegrationLinkFormat::raw:
        return link.url;
    case IntegrationLinkFormat::html:
        return "<a href=\"" + htmlEscaped(link.url) + "\">" + htmlEscaped(link.text) + "</a>";
    case IntegrationLinkFormat::markdown:
        return "[" +
               replacingEach(link.text, "\\[]*_`<>",
                             [](char c) {
                                 return std::string{'\\', c};
                             }) +
               "](" + percentEncodedEach(link.url, "()<> ") + ")";
    case IntegrationLinkFormat::mrkdwn:
        return "<" + slackEscaped(percentEncodedEach(link.url, "|<>")) + "|" + slackEscaped(link.text) + ">";
    }
    return link.url;
}

} // namespace zelto
