#include <ZeltoSandbox/SandboxService.h>

#include <ZeltoSandbox/PlainService.h>
#include <ZeltoSandbox/Trello/TrelloSandbox.h>

#include <Platform/ASCII.h>
#include <Platform/NeverDestroyed.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

// A service without a class of its own stands here by its hosts, with PlainService.
const auto& rows = neverDestroyed(std::vector<SandboxServiceRow>{
    {"Trello", {"api.trello.com"}, TrelloSandbox::make},
    {"Asana", {"app.asana.com"}, PlainService::make},
    {"Todoist", {"api.todoist.com"}, PlainService::make},
    {"TickTick", {"api.ticktick.com"}, PlainService::make},
    {"MeisterTask", {"www.meistertask.com"}, PlainService::make},
    {"Notion", {"api.notion.com"}, PlainService::make},
    {"OneNote", {"graph.microsoft.com"}, PlainService::make},
    {"MicrosoftTeams", {"graph.microsoft.com"}, PlainService::make},
    {"Dropbox", {"api.dropboxapi.com", "content.dropboxapi.com"}, PlainService::make},
    {"GoogleDrive", {"www.googleapis.com"}, PlainService::make},
    {"Slack", {"slack.com"}, PlainService::make},
    {"Hubspot", {"api.hubapi.com"}, PlainService::make},
    {"Zoom", {"api.zoom.us"}, PlainService::make},
    {"GoTo", {"api.getgo.com"}, PlainService::make},
    {"Instapaper", {"www.instapaper.com"}, PlainService::make},
});

} // namespace

std::span<const SandboxServiceRow> sandboxServices() {
    return rows;
}

SandboxResponse SandboxService::failure(int status) const {
    return SandboxResponse::text(std::string(reasonPhrase(status)), status);
}

bool pathFits(std::string_view pattern, const std::vector<std::string>& segments) {
    std::size_t index = 0;
    while (!pattern.empty()) {
        const auto end = std::min(pattern.find('/'), pattern.size());
        const auto part = pattern.substr(0, end);
        if (index == segments.size() || (part != "*" && part != segments[index])) {
            return false;
        }
        ++index;
        pattern.remove_prefix(std::min(end + 1, pattern.size()));
    }
    return index == segments.size();
}

std::optional<std::string> bearerToken(const SandboxRequest& request) {
    constexpr std::string_view scheme = "Bearer ";
    const auto* header = request.head.field("Authorization");
    if (!header || header->size() <= scheme.size() ||
        !equalIgnoringASCIICase(header->substr(0, scheme.size()), scheme)) {
        return std::nullopt;
    }
    return header->substr(scheme.size());
}

std::string_view bearerProblem(const SandboxRequest& request, TokenStore& tokens, std::string_view service) {
    const auto token = bearerToken(request);
    if (!token) {
        return "there is no bearer token";
    }
    switch (tokens.standing(service, *token)) {
    case TokenStanding::valid:
        return {};
    case TokenStanding::expired:
        return "the access token has expired";
    case TokenStanding::unknown:
        return "the access token is unknown";
    }
    return {};
}

} // namespace zelto::sandbox
