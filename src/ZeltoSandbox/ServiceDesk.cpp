#include <ZeltoSandbox/ServiceDesk.h>

#include <Platform/ASCII.h>

#include <ZeltoSandbox/Masking.h>

#include <algorithm>
#include <set>

namespace zelto::sandbox {

namespace {

std::set<std::string_view> serviceNames() {
    std::set<std::string_view> names;
    for (const auto& row : sandboxServices()) {
        names.insert(row.name);
    }
    for (const auto& row : oauthServices()) {
        names.insert(row.name);
    }
    for (const auto& row : oauth1Services()) {
        names.insert(row.name);
    }
    return names;
}

} // namespace

ServiceDesk::ServiceDesk(const SandboxOptions& options, RequestLog& log)
    : log_(log), firstSettings_{.consent = options.consent}, world_{.settings = firstSettings_},
      clients_(options.clients), oauth1_(world_, clients_), oauth2_(world_, clients_) {
    for (const auto& row : sandboxServices()) {
        services_.push_back({&row, row.make(world_, row)});
    }
}

ServiceDesk::Entry* ServiceDesk::apiAt(const SandboxRequest& request) {
    const auto hasHost = [&](const Entry& entry) {
        return std::ranges::find(entry.row->hosts, request.host) != entry.row->hosts.end();
    };
    // A host of several services: the token tells which.
    if (const auto token = bearerToken(request)) {
        if (const auto* grant = world_.tokens.anyAccess(*token)) {
            const auto found = std::ranges::find_if(services_, [&](const Entry& entry) {
                return hasHost(entry) && entry.row->name == grant->service;
            });
            if (found != services_.end()) {
                return &*found;
            }
        }
    }
    const auto found = std::ranges::find_if(services_, hasHost);
    return found == services_.end() ? nullptr : &*found;
}

std::string_view ServiceDesk::nameOf(const SandboxRequest& request) {
    if (const auto* service = OAuth2Endpoints::serviceAt(request)) {
        return service->name;
    }
    if (const auto* service = OAuth1Endpoints::serviceAt(request)) {
        return service->name;
    }
    const auto* entry = apiAt(request);
    return entry ? entry->row->name : std::string_view();
}

SandboxAnswer ServiceDesk::serviceAnswer(const SandboxRequest& request) {
    if (const auto* service = OAuth2Endpoints::serviceAt(request)) {
        return oauth2_.answer(*service, request);
    }
    if (const auto* service = OAuth1Endpoints::serviceAt(request)) {
        return oauth1_.answer(*service, request);
    }
    if (auto* entry = apiAt(request)) {
        return entry->service->answer(request);
    }
    return SandboxAnswer::text("Not Found\n", 404).because("the sandbox has nothing at this address");
}

SandboxAnswer ServiceDesk::faultAnswer(const SandboxFault& fault, const SandboxRequest& request) {
    const auto* entry = apiAt(request);
    auto answer = entry ? entry->service->failure(*fault.status)
                        : SandboxAnswer::text(std::string(reasonPhrase(*fault.status)), *fault.status);
    if (fault.body) {
        answer.body = *fault.body;
    }
    answer.status = *fault.status;
    for (const auto& field : fault.fields) {
        std::erase_if(answer.fields, [&](const HTTPHeaderField& each) {
            return equalIgnoringASCIICase(each.name, field.name);
        });
        answer.fields.push_back(field);
    }
    return answer;
}

PlannedAnswer ServiceDesk::answer(const SandboxRequest& request) {
    SandboxRecord record{.date = Date::now(),
                         .connection = request.connection,
                         .service = {},
                         .method = request.method,
                         .host = request.host,
                         .target = maskedTarget(request.head.target),
                         .fields = maskedFields(request.head.fields),
                         .bodySize = request.body->size(),
                         .body = shownBody(request),
                         .isWeb = !request.webPrefix.empty()};
    if (record.isWeb) {
        record.target.erase(0, request.webPrefix.size());
    }
    const std::lock_guard guard(lock_);
    record.service = nameOf(request);
    const auto fault = faults_.take(request);
    PlannedAnswer planned;
    if (fault) {
        record.fault = describe(*fault);
        planned = {.answer = {}, .delay = fault->delay, .resets = fault->reset, .slowBody = fault->slowBody};
        if (fault->expireTokens) {
            world_.tokens.expire(record.service);
        }
    }
    planned.answer = fault && fault->status ? faultAnswer(*fault, request) : serviceAnswer(request);
    record.status = planned.resets ? 0 : planned.answer.status;
    record.problem = planned.answer.problem;
    log_.add(std::move(record));
    return planned;
}

SandboxAnswer ServiceDesk::file(std::string_view path) const {
    const std::lock_guard guard(lock_);
    return world_.files.answer(path);
}

JSONObject ServiceDesk::state() const {
    const std::lock_guard guard(lock_);
    JSONValue::Array services;
    for (const auto name : serviceNames()) {
        services.push_back(JSONObject{{"name", name},
                                      {"requests", log_.countOf(name)},
                                      {"accessTokens", world_.tokens.accessCount(name)},
                                      {"refreshTokens", world_.tokens.refreshCount(name)}});
    }
    JSONObject state{{"services", std::move(services)}, {"faults", faults_.count()}};
    for (const auto& entry : services_) {
        if (auto ofService = entry.service->state(); !ofService.empty()) {
            state.set(toASCIILower(entry.row->name), std::move(ofService));
        }
    }
    return state;
}

bool ServiceDesk::addFault(SandboxFault fault) {
    const std::lock_guard guard(lock_);
    return faults_.add(std::move(fault));
}

std::size_t ServiceDesk::faultCount() const {
    const std::lock_guard guard(lock_);
    return faults_.count();
}

JSONValue ServiceDesk::faults() const {
    const std::lock_guard guard(lock_);
    return faults_.json();
}

void ServiceDesk::clearFaults() {
    const std::lock_guard guard(lock_);
    faults_.clear();
}

SandboxSettings ServiceDesk::settings() const {
    const std::lock_guard guard(lock_);
    return world_.settings;
}

void ServiceDesk::changeSettings(const std::function<void(SandboxSettings&)>& change) {
    const std::lock_guard guard(lock_);
    change(world_.settings);
}

std::optional<SandboxTokens> ServiceDesk::issueTokens(std::string_view service) {
    const std::lock_guard guard(lock_);
    TokenGrant grant{
        .service = std::string(service), .clientID = {}, .scope = {}, .flow = world_.tokens.newFlow()};
    if (std::ranges::find(oauth1Services(), service, &OAuth1Service::name) != oauth1Services().end()) {
        grant.scope = "read,write,account";
        return SandboxTokens{world_.tokens.issueAccess(std::move(grant), std::nullopt), {}, std::nullopt};
    }
    const auto* row = findOAuthService(service);
    if (!row) {
        return std::nullopt;
    }
    SandboxTokens tokens;
    if (row->lifetime > 0) {
        tokens.lifetime = TimeInterval(row->lifetime);
    }
    if (row->firstRefresh != FirstRefreshToken::never) {
        tokens.refreshToken = world_.tokens.issueRefresh(grant);
    }
    tokens.accessToken = oauth2_.issueAccess(*row, std::move(grant));
    return tokens;
}

bool ServiceDesk::expireTokens(std::string_view service) {
    const std::lock_guard guard(lock_);
    world_.tokens.expire(service);
    return serviceNames().contains(service);
}

void ServiceDesk::reset() {
    const std::lock_guard guard(lock_);
    world_.tokens.clear();
    world_.files.clear();
    world_.settings = firstSettings_;
    oauth1_.reset();
    oauth2_.reset();
    faults_.clear();
    for (auto& entry : services_) {
        entry.service->reset();
    }
    log_.clear();
}

} // namespace zelto::sandbox
