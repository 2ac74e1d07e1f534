#include <ZeltoSandbox/MicrosoftTeams/MicrosoftTeamsSandbox.h>

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/Graph/GraphAccess.h>
#include <ZeltoSandbox/JSONBody.h>
#include <ZeltoSandbox/Meetings/JoinPage.h>
#include <ZeltoSandbox/MicrosoftTeams/TeamsJSON.h>
#include <ZeltoSandbox/MicrosoftTeams/TeamsRequest.h>

#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::string_view webHost = "teams.microsoft.com";
constexpr auto readUser = "User.Read";
constexpr auto writeMeetings = "OnlineMeetings.ReadWrite";
constexpr std::uint64_t maximumBody = std::uint64_t{64} << 10;

std::unique_ptr<MeetingStore> newStore() {
    return std::make_unique<MeetingStore>(teamsName, "");
}

SandboxResponse badRequest(std::string message, int status = 400) {
    return graphRefusal(status, "BadRequest", std::move(message));
}

} // namespace

// The service takes a path that has a double slash as it takes one that has not.
const SandboxEndpoint<MicrosoftTeamsSandbox> MicrosoftTeamsSandbox::endpoints[] = {
    {"GET", "v1.0/me/licenseDetails", &MicrosoftTeamsSandbox::licenses, readUser},
    {"GET", "v1.0//me/licenseDetails", &MicrosoftTeamsSandbox::licenses, readUser},
    {"POST", "v1.0/me/onlineMeetings", &MicrosoftTeamsSandbox::create, writeMeetings},
    {"PATCH", "v1.0/me/onlineMeetings/*", &MicrosoftTeamsSandbox::update, writeMeetings},
    {"DELETE", "v1.0/me/onlineMeetings/*", &MicrosoftTeamsSandbox::remove, writeMeetings},
};

std::unique_ptr<SandboxService> MicrosoftTeamsSandbox::make(SandboxContext& context,
                                                            const SandboxServiceRow&) {
    return std::make_unique<MicrosoftTeamsSandbox>(context);
}

MicrosoftTeamsSandbox::MicrosoftTeamsSandbox(SandboxContext& context)
    : context_(context), store_(newStore()) {}

SandboxResponse MicrosoftTeamsSandbox::respond(const SandboxRequest& request) {
    store_->setAdditionalCount(context_.settings.meetings.additionalMeetings);
    if (request.host == webHost) {
        return joinPage("Microsoft Teams", *store_, teamsHost, request);
    }
    const auto grant = bearerGrant(request, context_.tokens, "MicrosoftTeams");
    if (!grant) {
        return failure(401).because(grant.error());
    }
    const auto* endpoint = endpointFor<MicrosoftTeamsSandbox>(request, endpoints);
    if (!endpoint) {
        return badRequest("Resource not found for the path of this request.");
    }
    if (!graphCovers(**grant, endpoint->scope)) {
        return failure(403).because("the token does not have the scope " + std::string(endpoint->scope));
    }
    if (context_.settings.meetings.personalAccount) {
        return graphRefusal(403, "Forbidden",
                            "This request is not supported for personal Microsoft accounts.");
    }
    return (this->*endpoint->handler)(request);
}

SandboxResponse MicrosoftTeamsSandbox::failure(int status) const {
    switch (status) {
    case 401:
        return graphRefusal(status, "InvalidAuthenticationToken",
                            "The access token is missing, invalid or expired.");
    case 403:
        return graphRefusal(status, "Forbidden", "The request does not have the permissions that it needs.");
    case 404:
        return graphRefusal(status, "NotFound", "The meeting does not exist.");
    case 429:
        return graphRefusal(status, "TooManyRequests", "There were too many requests. Try again later.");
    case 503:
        return graphRefusal(status, "ServiceUnavailable",
                            "The service is not available now. Try again later.");
    default:
        return graphRefusal(status, status >= 500 ? "InternalServerError" : "BadRequest",
                            std::string(reasonPhrase(status)) + ".");
    }
}

SandboxResponse MicrosoftTeamsSandbox::licenses(const SandboxRequest&) {
    return graphList("users('" + std::string(teamsHost.id) + "')/licenseDetails",
                     teamsLicensesJSON(context_.settings.meetings));
}

SandboxResponse MicrosoftTeamsSandbox::create(const SandboxRequest& request) {
    const auto body = jsonObject(request, maximumBody);
    if (!body) {
        return badRequest(body.error().text, body.error().status);
    }
    auto details = teamsDetails(*body, std::nullopt);
    if (!details) {
        return badRequest(std::move(details.error()));
    }
    const auto* meeting = store_->add(*std::move(details));
    return meeting ? SandboxResponse::json(teamsMeetingJSON(*meeting), 201)
                   : failure(503).because("the sandbox takes no more meetings");
}

SandboxResponse MicrosoftTeamsSandbox::update(const SandboxRequest& request) {
    auto* meeting = store_->find(request.segments[3]);
    if (!meeting) {
        return failure(404);
    }
    const auto body = jsonObject(request, maximumBody);
    if (!body) {
        return badRequest(body.error().text, body.error().status);
    }
    auto details = teamsDetails(*body, meeting->details);
    if (!details) {
        return badRequest(std::move(details.error()));
    }
    MeetingStore::change(*meeting, *std::move(details));
    return SandboxResponse::json(teamsMeetingJSON(*meeting));
}

SandboxResponse MicrosoftTeamsSandbox::remove(const SandboxRequest& request) {
    auto* meeting = store_->find(request.segments[3]);
    if (!meeting) {
        return failure(404);
    }
    MeetingStore::remove(*meeting);
    return {.status = 204};
}

JSONObject MicrosoftTeamsSandbox::state() const {
    return meetingsState(*store_, teamsHost);
}

void MicrosoftTeamsSandbox::reset() {
    store_ = newStore();
}

} // namespace zelto::sandbox
