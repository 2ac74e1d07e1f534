#include <ZeltoSandbox/ControlAPI.h>

#include <ZeltoSandbox/FaultList.h>
#include <ZeltoSandbox/JSONBody.h>
#include <ZeltoSandbox/SandboxProof.h>
#include <ZeltoSandbox/SettingsJSON.h>

#include <Platform/Numbers.h>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumBody = std::size_t{1} << 20;
constexpr std::size_t maximumChallenge = 128;
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
    std::optional<std::string> problem;
    dispatcher_.changeSettings([&](SandboxSettings& settings) {
        auto changed = settings;
        problem = readSettings(changed, *json.asObject());
        if (!problem) {
            settings = changed;
        }
    });
    return problem ? refused(400, *std::move(problem)) : done();
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
    state.set("settings", settingsJSON(dispatcher_.settings()));
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
