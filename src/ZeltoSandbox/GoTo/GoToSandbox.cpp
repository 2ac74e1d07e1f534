#include <ZeltoSandbox/GoTo/GoToSandbox.h>

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/GoTo/GoToRequest.h>
#include <ZeltoSandbox/JSONBody.h>
#include <ZeltoSandbox/Meetings/JoinPage.h>

#include <utility>

namespace zelto::sandbox {

namespace {

constexpr MeetingHost meetingHost{"5040010001", "Robin Sandbox", "robin@sandbox.example"};
constexpr std::string_view webHost = "global.gotomeeting.com";
constexpr std::string_view usualKind = "scheduled";
constexpr std::uint64_t maximumBody = std::uint64_t{64} << 10;
constexpr std::uint64_t firstNumber = 400'000'000;
constexpr std::uint64_t numberStep = 12'011;
constexpr int maximumParticipants = 26;

MeetingStore::Name meetingName(std::uint64_t count) {
    const auto number = firstNumber + count * numberStep;
    const auto id = std::to_string(number);
    return {number, id, "https://global.gotomeeting.com/join/" + id};
}

// "412-345-678"
std::string accessCode(const std::string& id) {
    return id.substr(0, 3) + "-" + id.substr(3, 3) + "-" + id.substr(6);
}

std::string callInfoText(const std::string& wanted, const std::string& id) {
    const auto code = "Access Code: " + accessCode(id);
    if (wanted == "VoIP") {
        return "Microphone and speakers (VoIP)\n" + code;
    }
    if (wanted == "PSTN" || wanted == "Free" || wanted == "Hybrid") {
        return "Germany: +49 30 55550100\nUnited States: +1 (646) 555-0100\n" + code;
    }
    return wanted;
}

JSONObject createdJSON(const MeetingRecord& meeting, const std::string& callInfo) {
    return {{"joinURL", meeting.joinURL},
            {"meetingid", meeting.number},
            {"maxParticipants", maximumParticipants},
            {"uniqueMeetingId", meeting.number},
            {"conferenceCallInfo", callInfoText(callInfo, meeting.id)}};
}

std::unique_ptr<MeetingStore> newStore() {
    return std::make_unique<MeetingStore>(meetingName, usualKind);
}

} // namespace

const SandboxEndpoint<GoToSandbox> GoToSandbox::endpoints[] = {
    {"POST", "G2M/rest/meetings", &GoToSandbox::create},
    {"PUT", "G2M/rest/meetings/*", &GoToSandbox::update},
    {"DELETE", "G2M/rest/meetings/*", &GoToSandbox::remove},
};

std::unique_ptr<SandboxService> GoToSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<GoToSandbox>(context);
}

GoToSandbox::GoToSandbox(SandboxContext& context) : context_(context), store_(newStore()) {}

SandboxResponse GoToSandbox::respond(const SandboxRequest& request) {
    store_->setAdditionalCount(context_.settings.meetings.additionalMeetings);
    if (request.host == webHost) {
        return joinPage("GoTo Meeting", *store_, meetingHost, request);
    }
    const auto grant = bearerGrant(request, context_.tokens, "GoTo");
    if (!grant) {
        return failure(401).because(grant.error());
    }
    const auto* endpoint = endpointFor<GoToSandbox>(request, endpoints);
    return endpoint ? (this->*endpoint->handler)(request) : failure(404);
}

SandboxResponse GoToSandbox::failure(int status) const {
    return GoToError::ofStatus(status);
}

SandboxResponse GoToSandbox::create(const SandboxRequest& request) {
    const auto body = jsonObject(request, maximumBody);
    if (!body) {
        return GoToError::invalidJSON(body.error().status).because(body.error().text);
    }
    auto wanted = readGoToRequest(*body, context_.settings.publishedLimits);
    if (!wanted) {
        return wanted.error().response();
    }
    if (context_.settings.meetings.emptyList) {
        return SandboxResponse::json(JSONValue::Array(), 201)
            .because("the list is to be empty, by a setting");
    }
    const auto* meeting = store_->add(std::move(wanted->details));
    if (!meeting) {
        return failure(503).because("the sandbox takes no more meetings");
    }
    return SandboxResponse::json(JSONValue::Array{createdJSON(*meeting, wanted->conferenceCallInfo)}, 201);
}

SandboxResponse GoToSandbox::update(const SandboxRequest& request) {
    auto* meeting = store_->find(request.segments[3]);
    if (!meeting) {
        return failure(404);
    }
    const auto body = jsonObject(request, maximumBody);
    if (!body) {
        return GoToError::invalidJSON(body.error().status).because(body.error().text);
    }
    auto wanted = readGoToRequest(*body, context_.settings.publishedLimits);
    if (!wanted) {
        return wanted.error().response();
    }
    MeetingStore::change(*meeting, std::move(wanted->details));
    return {.status = 204};
}

SandboxResponse GoToSandbox::remove(const SandboxRequest& request) {
    auto* meeting = store_->find(request.segments[3]);
    if (!meeting) {
        return failure(404);
    }
    MeetingStore::remove(*meeting);
    return {.status = 204};
}

JSONObject GoToSandbox::state() const {
    return meetingsState(*store_, meetingHost);
}

void GoToSandbox::reset() {
    store_ = newStore();
}

} // namespace zelto::sandbox
