#include <ZeltoSandbox/ControlAPI.h>

#include <ZeltoSandbox/FaultList.h>
#include <ZeltoSandbox/JSONBody.h>
#include <ZeltoSandbox/Meetings/MeetingSettings.h>
#include <ZeltoSandbox/SandboxProof.h>
#include <ZeltoSandbox/Slack/SlackSettings.h>

#include <Platform/Numbers.h>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumBody = std::size_t{1} << 20;
constexpr std::size_t maximumChallenge = 128;
constexpr std::uint64_t maximumAdditionalTargets = 1000;
constexpr TimeInterval eventPause{0.25};
constexpr int pausesBetweenSigns = 60;

SandboxResponse refused(int status, std::string text) {
    return SandboxResponse::json(JSONObject{{"error", std::move(text)}}, status);
}

SandboxResponse done() {
    return {.status = 204};
}

// The request number of "after"; nullopt if it is not a number.
std::optional<std::uint64_t> startOf(std::string_view query) {
    const auto items = parseFormItems(query);
    return items ? numberIn<std::uint64_t>(valueOf(*items, "after").value_or("0")) : std::nullopt;
}

std::string serviceName(const JSONValue& json) {
    const auto* name = textMember(json, "service");
    return name ? *name : std::string();
}

// What "drives" has to be; nullopt if it is valid. Those of its members that are left out stay as they are.
std::optional<std::string> readDrives(SandboxDrives& drives, const JSONValue& json) {
    if (!json.asObject()) {
        return "an object";
    }
    for (const auto& [key, value] : *json.asObject()) {
        const auto count = value.asUInt64();
        const auto seconds = value.asDouble().value_or(-1);
        if (key == "additionalFolders" || key == "additionalFiles") {
            if (!count || *count > SandboxDrives::maximumAdditionalCount) {
                return "an object in which \"" + key + "\" is a number from 0 to 20000";
            }
            (key == "additionalFiles" ? drives.additionalFiles : drives.additionalFolders) =
                static_cast<std::size_t>(*count);
        } else if (key == "searchDelay") {
            if (!(seconds >= 0)) {
                return "an object in which \"searchDelay\" is a number of seconds";
            }
            drives.searchDelay = TimeInterval(seconds);
        } else if (key == "space") {
            if (!value.isNull() && !count) {
                return "an object in which \"space\" is a number of bytes, or null";
            }
            drives.space = count;
        } else {
            return "an object without \"" + key + "\"";
        }
    }
    return std::nullopt;
}

JSONObject drivesJSON(const SandboxDrives& drives) {
    return {{"additionalFolders", drives.additionalFolders},
            {"additionalFiles", drives.additionalFiles},
            {"searchDelay", drives.searchDelay.count()},
            {"space", drives.space ? JSONValue(*drives.space) : JSONValue()}};
}

// The same of "hubspot".
std::optional<std::string> readHubspot(SandboxHubspot& hubspot, const JSONValue& json) {
    if (!json.asObject()) {
        return "an object";
    }
    for (const auto& [key, value] : *json.asObject()) {
        if (key != "additionalContacts" && key != "concurrentContacts") {
            return "an object without \"" + key + "\"";
        }
        const auto count = value.asUInt64();
        if (!count || *count > SandboxHubspot::maximumContactCount) {
            return "an object in which \"" + key + "\" is a number from 0 to 20000";
        }
        (key == "additionalContacts" ? hubspot.additionalContacts : hubspot.concurrentContacts) =
            static_cast<std::size_t>(*count);
    }
    return std::nullopt;
}

JSONObject hubspotJSON(const SandboxHubspot& hubspot) {
    return {{"additionalContacts", hubspot.additionalContacts},
            {"concurrentContacts", hubspot.concurrentContacts}};
}

// What the member has to be; nullopt if it is valid.
std::optional<std::string> readSetting(SandboxSettings& settings, const std::string& key,
                                       const JSONValue& value) {
    if (key == "consent") {
        const auto* name = value.asString();
        const auto consent = name ? fromName<SandboxConsent>(*name) : std::nullopt;
        settings.consent = consent.value_or(settings.consent);
        return consent ? std::nullopt : std::optional<std::string>("\"ask\", \"allow\" or \"deny\"");
    }
    if (key == "plan") {
        const auto* plan = value.asString();
        settings.paidPlan = plan && *plan == "paid";
        return plan && (*plan == "paid" || *plan == "free")
                   ? std::nullopt
                   : std::optional<std::string>("\"free\" or \"paid\"");
    }
    if (key == "attachmentLimit") {
        settings.attachmentLimit = value.asUInt64();
        return value.isNull() || settings.attachmentLimit
                   ? std::nullopt
                   : std::optional<std::string>("a number of bytes, or null for the plan's");
    }
    if (key == "additionalTargets") {
        const auto count = value.asUInt64();
        const bool isAllowed = count && *count <= maximumAdditionalTargets;
        settings.additionalTargets = isAllowed ? static_cast<std::size_t>(*count) : 0;
        return isAllowed ? std::nullopt : std::optional<std::string>("a number from 0 to 1000");
    }
    if (key == "publishedLimits") {
        settings.publishedLimits = value.asBool().value_or(false);
        return value.asBool() ? std::nullopt : std::optional<std::string>("true or false");
    }
    if (key == "drives") {
        return readDrives(settings.drives, value);
    }
    if (key == "slack") {
        return readSlackSettings(settings.slack, value);
    }
    if (key == "meetings") {
        return readMeetings(settings.meetings, value);
    }
    if (key == "hubspot") {
        return readHubspot(settings.hubspot, value);
    }
    return "left out; there is no such setting";
}

} // namespace

SandboxResponse ControlAPI::respond(const RequestHead& head, std::string_view path, std::string_view query,
                                    const SpooledBytes& body) const {
    if (head.method == "GET" || head.method == "HEAD") {
        return read(path, query);
    }
    if (!head.field(controlHeader)) {
        return refused(403, "What changes the sandbox needs the header " + std::string(controlHeader) + ".");
    }
    if (head.method == "DELETE" && path == "faults") {
        dispatcher_.clearFaults();
        log_.touch();
        return done();
    }
    if (head.method != "POST") {
        return refused(405, "There is no " + head.method + " here.");
    }
    const auto* type = head.field("Content-Type");
    if (!type || mediaTypeOf(*type) != "application/json") {
        return refused(415, "The Content-Type has to be application/json.");
    }
    std::string text(std::min<std::uint64_t>(body.size(), maximumBody), '\0');
    text.resize(body.read(0, text));
    auto json = text.empty() ? JSONValue(JSONObject()) : JSONValue();
    if (!text.empty()) {
        auto parsed = JSONValue::parse(text);
        if (!parsed || !parsed->asObject()) {
            return refused(400, "The body has to be one JSON object.");
        }
        json = std::move(*parsed);
    }
    auto response = change(path, json);
    log_.touch();
    return response;
}

SandboxResponse ControlAPI::read(std::string_view path, std::string_view query) const {
    if (path == "state") {
        return SandboxResponse::json(state());
    }
    if (path == "requests") {
        const auto start = startOf(query);
        return start ? SandboxResponse::json(log_.json(*start))
                     : refused(400, "\"after\" has to be a number.");
    }
    if (path == "faults") {
        return SandboxResponse::json(JSONObject{{"faults", dispatcher_.faults()}});
    }
    if (path == "identity") {
        return identity(query);
    }
    if (path == "events") {
        return events();
    }
    return refused(404, "There is nothing here.");
}

SandboxResponse ControlAPI::change(std::string_view path, const JSONValue& json) const {
    if (path == "faults") {
        auto fault = readFault(json);
        if (!fault) {
            return refused(400, fault.error());
        }
        return dispatcher_.addFault(std::move(*fault))
                   ? done()
                   : refused(409, "There are as many faults as the sandbox keeps.");
    }
    if (path == "settings") {
        return changeSettings(json);
    }
    if (path == "tokens") {
        return issueTokens(json);
    }
    if (path == "expire") {
        return dispatcher_.expireTokens(serviceName(json))
                   ? done()
                   : refused(400, "\"service\" has to name a service.");
    }
    if (path == "reset") {
        dispatcher_.reset();
        return done();
    }
    return refused(404, "There is nothing here.");
}

SandboxResponse ControlAPI::changeSettings(const JSONValue& json) const {
    std::string problem;
    dispatcher_.changeSettings([&](SandboxSettings& settings) {
        auto changed = settings;
        for (const auto& [key, value] : *json.asObject()) {
            if (const auto wanted = readSetting(changed, key, value)) {
                problem = "\"" + key + "\" has to be " + *wanted + ".";
                return;
            }
        }
        settings = changed;
    });
    return problem.empty() ? done() : refused(400, std::move(problem));
}

SandboxResponse ControlAPI::issueTokens(const JSONValue& json) const {
    const auto tokens = dispatcher_.issueTokens(serviceName(json));
    if (!tokens) {
        return refused(400, "\"service\" has to name a service that has a sign-in.");
    }
    JSONObject response{{"accessToken", tokens->accessToken}};
    if (!tokens->refreshToken.empty()) {
        response.set("refreshToken", tokens->refreshToken);
    }
    if (tokens->lifetime) {
        response.set("expiresIn", tokens->lifetime->count());
    }
    return SandboxResponse::json(std::move(response));
}

JSONValue ControlAPI::state() const {
    auto state = dispatcher_.state();
    const auto settings = dispatcher_.settings();
    state.set("settings",
              JSONObject{{"consent", nameOf(settings.consent)},
                         {"plan", settings.paidPlan ? "paid" : "free"},
                         {"attachmentLimit",
                          settings.attachmentLimit ? JSONValue(*settings.attachmentLimit) : JSONValue()},
                         {"additionalTargets", settings.additionalTargets},
                         {"publishedLimits", settings.publishedLimits},
                         {"drives", drivesJSON(settings.drives)},
                         {"slack", slackSettingsJSON(settings.slack)},
                         {"meetings", meetingSettingsJSON(settings.meetings)},
                         {"hubspot", hubspotJSON(settings.hubspot)}});
    state.set("requests", log_.lastNumber());
    addFigures_(state);
    return state;
}

SandboxResponse ControlAPI::identity(std::string_view query) {
    const auto items = parseFormItems(query);
    const auto challenge = items ? valueOf(*items, "challenge").value_or("") : std::string();
    if (challenge.empty() || challenge.size() > maximumChallenge) {
        return refused(400, "\"challenge\" has to be a text of 1 to 128 bytes.");
    }
    return SandboxResponse::json(JSONObject{{"proof", sandboxProof(challenge)}});
}

// Sends the number of requests at once, and again whenever something has changed.
SandboxResponse ControlAPI::events() const {
    auto stream = [this, seen = std::uint64_t{0}, pauses = 0]() mutable -> std::string {
        const auto revision = seen == 0 ? log_.revision() : log_.waitForChange(seen, eventPause);
        if (revision != seen) {
            seen = revision;
            pauses = 0;
            return "event: change\ndata: {\"requests\":" + std::to_string(log_.lastNumber()) + "}\n\n";
        }
        return ++pauses % pausesBetweenSigns == 0 ? ":\n\n" : "";
    };
    return {.fields = {{"Content-Type", "text/event-stream"}}, .stream = std::move(stream)};
}

} // namespace zelto::sandbox
