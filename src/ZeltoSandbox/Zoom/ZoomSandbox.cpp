#include <ZeltoSandbox/Zoom/ZoomSandbox.h>

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/JSONBody.h>
#include <ZeltoSandbox/Meetings/JoinPage.h>
#include <ZeltoSandbox/Zoom/ZoomJSON.h>
#include <ZeltoSandbox/Zoom/ZoomRequest.h>

#include <Platform/ISO8601.h>

#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::string_view webHost = "zoom.us";
constexpr auto writeMeetings = "meeting:write";
constexpr std::uint64_t maximumBody = std::uint64_t{64} << 10;
constexpr TimeInterval day{86'400};

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

Result<JSONValue, ZoomError> bodyOf(const SandboxRequest& request) {
    auto body = jsonObject(request, maximumBody);
    if (!body) {
        return failure(ZoomError{.status = body.error().status,
                                 .message = body.error().status == 415
                                                ? "Unsupported Content Type."
                                                : "Request Body should be a valid JSON object."});
    }
    return *std::move(body);
}

} // namespace

const SandboxEndpoint<ZoomSandbox> ZoomSandbox::endpoints[] = {
    {"POST", "v2/users/me/meetings", &ZoomSandbox::create, writeMeetings},
    {"PATCH", "v2/meetings/*", &ZoomSandbox::update, writeMeetings},
    {"DELETE", "v2/meetings/*", &ZoomSandbox::remove, writeMeetings},
};

std::unique_ptr<SandboxService> ZoomSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<ZoomSandbox>(context);
}

ZoomSandbox::ZoomSandbox(SandboxContext& context)
    : context_(context), store_(std::make_unique<MeetingStore>(zoomName, zoomKind(zoomScheduledType))) {}

SandboxResponse ZoomSandbox::respond(const SandboxRequest& request) {
    store_->setAdditionalCount(context_.settings.meetings.additionalMeetings);
    if (request.host == webHost) {
        return joinPage("Zoom", *store_, zoomHost, request);
    }
    const auto grant = bearerGrant(request, context_.tokens, "Zoom");
    if (!grant) {
        return failure(401).because(grant.error());
    }
    const auto* endpoint = endpointFor<ZoomSandbox>(request, endpoints);
    if (!endpoint) {
        return ZoomError{404, 2300, "This API endpoint is not recognized."}.response();
    }
    if (!coversScope(**grant, endpoint->scope)) {
        return ZoomError{400, 4711,
                         "Invalid access token, does not contain scopes:[" + std::string(endpoint->scope) +
                             "]."}
            .response();
    }
    return (this->*endpoint->handler)(request);
}

SandboxResponse ZoomSandbox::failure(int status) const {
    return ZoomError::ofStatus(status).response();
}

Result<MeetingRecord*, ZoomError> ZoomSandbox::meetingOf(const SandboxRequest& request) {
    const auto& id = request.segments[2];
    if (!isNumber(id)) {
        return zelto::failure(ZoomError{.message = "Invalid meeting id."});
    }
    auto* meeting = store_->find(id);
    if (!meeting) {
        return zelto::failure(ZoomError::noSuchMeeting(id));
    }
    return meeting;
}

std::optional<SandboxResponse> ZoomSandbox::dailyRefusal() {
    const auto now = Date::now();
    while (!changes_.empty() && changes_.front() <= now - day) {
        changes_.pop_front();
    }
    const auto limit = context_.settings.meetings.dailyLimit;
    if (!limit || changes_.size() < *limit) {
        return std::nullopt;
    }
    const auto oldest = *limit == 0 ? now : changes_[changes_.size() - *limit];
    return ZoomError{429, 429,
                     "You have exceeded the daily rate limit (" + std::to_string(*limit) +
                         ") of Meeting Create/Update API requests permitted for this user."}
        .response()
        .with("X-RateLimit-Category", "Medium")
        .with("X-RateLimit-Type", "Daily-limit")
        .with("X-RateLimit-Limit", std::to_string(*limit))
        .with("X-RateLimit-Remaining", "0")
        .with("Retry-After", iso8601(oldest + day));
}

void ZoomSandbox::countChange() {
    if (changes_.size() == SandboxMeetings::maximumDailyLimit) {
        changes_.pop_front();
    }
    changes_.push_back(Date::now());
}

SandboxResponse ZoomSandbox::create(const SandboxRequest& request) {
    if (auto refusal = dailyRefusal()) {
        return *std::move(refusal);
    }
    const auto body = bodyOf(request);
    if (!body) {
        return body.error().response();
    }
    auto details = zoomDetails(*body, std::nullopt);
    if (!details) {
        return details.error().response();
    }
    const auto* meeting = store_->add(*std::move(details));
    if (!meeting) {
        return failure(503).because("the sandbox takes no more meetings");
    }
    countChange();
    const auto* password = textMember(*body, "password");
    return SandboxResponse::json(zoomMeetingJSON(*meeting, password ? *password : ""), 201);
}

SandboxResponse ZoomSandbox::update(const SandboxRequest& request) {
    const auto meeting = meetingOf(request);
    if (!meeting) {
        return meeting.error().response();
    }
    if (auto refusal = dailyRefusal()) {
        return *std::move(refusal);
    }
    const auto body = bodyOf(request);
    if (!body) {
        return body.error().response();
    }
    auto details = zoomDetails(*body, (*meeting)->details);
    if (!details) {
        return details.error().response();
    }
    MeetingStore::change(**meeting, *std::move(details));
    countChange();
    return {.status = 204};
}

SandboxResponse ZoomSandbox::remove(const SandboxRequest& request) {
    const auto meeting = meetingOf(request);
    if (!meeting) {
        return meeting.error().response();
    }
    MeetingStore::remove(**meeting);
    return {.status = 204};
}

JSONObject ZoomSandbox::state() const {
    return meetingsState(*store_, zoomHost);
}

void ZoomSandbox::reset() {
    store_ = std::make_unique<MeetingStore>(zoomName, zoomKind(zoomScheduledType));
    changes_.clear();
}

} // namespace zelto::sandbox
