#include <ZeltoSandbox/ServiceDispatcher.h>

#include <Platform/ASCII.h>

#include <ZeltoSandbox/BearerAccess.h>
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

std::optional<std::string_view> serviceNamed(std::string_view name) {
    const auto names = serviceNames();
    const auto found = std::ranges::find_if(
        names, [&](std::string_view each) { return equalIgnoringASCIICase(each, name); });
    return found == names.end() ? std::nullopt : std::optional(*found);
}

} // namespace

ServiceDispatcher::ServiceDispatcher(const SandboxOptions& options, RequestLog& log,
                                     std::shared_ptr<SpoolSpace> space)
    : log_(log), firstSettings_{.consent = options.consent}, context_{.settings = firstSettings_,
                                                                      .space = std::move(space)},
      clients_(options.clients), oauth1_(context_, clients_), oauth2_(context_, clients_) {
    for (const auto& row : sandboxServices()) {
        services_.push_back({&row, row.make(context_, row)});
    }
}

ServiceDispatcher::Entry* ServiceDispatcher::apiAt(const SandboxRequest& request) {
    const auto hasHost = [&](const Entry& entry) {
        return std::ranges::find(entry.row->hosts, request.host) != entry.row->hosts.end();
    };
    // Several services share a host: the token's service decides.
    if (const auto token = bearerToken(request)) {
        if (const auto* grant = context_.tokens.anyAccess(*token)) {
            const auto found = std::ranges::find_if(services_, [&](const Entry& entry) {
                return hasHost(entry) && entry.row->name == grant->service;
            });
            if (found != services_.end()) {
                return &*found;
            }
        }
    }
    const auto hasPath = [&](const Entry& entry) {
        return hasHost(entry) && std::ranges::any_of(entry.row->paths, [&](std::string_view path) {
                   return request.path.starts_with(path);
               });
    };
    const auto byPath = std::ranges::find_if(services_, hasPath);
    const auto found = byPath == services_.end() ? std::ranges::find_if(services_, hasHost) : byPath;
    return found == services_.end() ? nullptr : &*found;
}

std::string_view ServiceDispatcher::nameOf(const SandboxRequest& request) {
    if (const auto* service = OAuth2Endpoints::serviceAt(request)) {
        return service->name;
    }
    if (const auto* service = OAuth1Endpoints::serviceAt(request)) {
        return service->name;
    }
    const auto* entry = apiAt(request);
    return entry ? entry->row->name : std::string_view();
}

SandboxResponse ServiceDispatcher::serviceResponse(const SandboxRequest& request) {
    if (const auto* service = OAuth2Endpoints::serviceAt(request)) {
        return oauth2_.respond(*service, request);
    }
    if (const auto* service = OAuth1Endpoints::serviceAt(request)) {
        return oauth1_.respond(*service, request);
    }
    if (auto* entry = apiAt(request)) {
        return entry->service->respond(request);
    }
    return SandboxResponse::text("Not Found\n", 404).because("the sandbox has nothing at this address");
}

SandboxResponse ServiceDispatcher::faultResponse(const SandboxFault& fault, const SandboxRequest& request) {
    const auto* entry = apiAt(request);
    auto response = entry ? entry->service->failure(*fault.status)
                          : SandboxResponse::text(std::string(reasonPhrase(*fault.status)), *fault.status);
    if (fault.body) {
        response.body = *fault.body;
    }
    response.status = *fault.status;
    for (const auto& field : fault.fields) {
        std::erase_if(response.fields, [&](const HTTPHeaderField& each) {
            return equalIgnoringASCIICase(each.name, field.name);
        });
        response.fields.push_back(field);
    }
    return response;
}

PlannedResponse ServiceDispatcher::respond(const SandboxRequest& request) {
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
    PlannedResponse planned;
    if (fault) {
        record.fault = describe(*fault);
        planned = {.response = {},
                   .delay = fault->delay,
                   .resets = fault->reset,
                   .slowBody = fault->slowBody,
                   .lengthError = fault->lengthError.value_or(0),
                   .cutAfter = fault->cutAfter,
                   .stallAfter = fault->stallAfter};
        if (fault->expireTokens) {
            context_.tokens.expire(record.service);
        }
    }
    planned.response = fault && fault->status ? faultResponse(*fault, request) : serviceResponse(request);
    record.status = planned.resets && !planned.cutAfter ? 0 : planned.response.status;
    record.problem = planned.response.problem;
    log_.add(std::move(record));
    return planned;
}

SandboxResponse ServiceDispatcher::file(std::string_view path) const {
    const std::lock_guard guard(lock_);
    return context_.files.response(path);
}

JSONObject ServiceDispatcher::state() const {
    const std::lock_guard guard(lock_);
    JSONValue::Array services;
    for (const auto name : serviceNames()) {
        services.push_back(JSONObject{{"name", name},
                                      {"requests", log_.countOf(name)},
                                      {"accessTokens", context_.tokens.accessCount(name)},
                                      {"refreshTokens", context_.tokens.refreshCount(name)}});
    }
    JSONObject state{{"services", std::move(services)}, {"faults", faults_.count()}};
    for (const auto& entry : services_) {
        if (auto ofService = entry.service->state(); !ofService.empty()) {
            state.set(toASCIILower(entry.row->name), std::move(ofService));
        }
    }
    return state;
}

bool ServiceDispatcher::addFault(SandboxFault fault) {
    const std::lock_guard guard(lock_);
    return faults_.add(std::move(fault));
}

std::size_t ServiceDispatcher::faultCount() const {
    const std::lock_guard guard(lock_);
    return faults_.count();
}

JSONValue ServiceDispatcher::faults() const {
    const std::lock_guard guard(lock_);
    return faults_.json();
}

void ServiceDispatcher::clearFaults() {
    const std::lock_guard guard(lock_);
    faults_.clear();
}

SandboxSettings ServiceDispatcher::settings() const {
    const std::lock_guard guard(lock_);
    return context_.settings;
}

void ServiceDispatcher::changeSettings(const std::function<void(SandboxSettings&)>& change) {
    const std::lock_guard guard(lock_);
    change(context_.settings);
}

std::optional<SandboxTokens> ServiceDispatcher::issueTokens(std::string_view name) {
    const std::lock_guard guard(lock_);
    const auto service = serviceNamed(name).value_or("");
    TokenGrant grant{
        .service = std::string(service), .clientID = {}, .scope = {}, .flow = context_.tokens.newFlow()};
    if (std::ranges::find(oauth1Services(), service, &OAuth1Service::name) != oauth1Services().end()) {
        grant.scope = "read,write,account";
        return SandboxTokens{context_.tokens.issueAccess(std::move(grant), std::nullopt), {}, std::nullopt};
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
        tokens.refreshToken = context_.tokens.issueRefresh(grant);
    }
    tokens.accessToken = oauth2_.issueAccess(*row, std::move(grant));
    return tokens;
}

bool ServiceDispatcher::expireTokens(std::string_view name) {
    const std::lock_guard guard(lock_);
    const auto service = serviceNamed(name);
    if (service) {
        context_.tokens.expire(*service);
    }
    return service.has_value();
}

void ServiceDispatcher::reset() {
    const std::lock_guard guard(lock_);
    context_.tokens.clear();
    context_.files.clear();
    context_.settings = firstSettings_;
    oauth1_.reset();
    oauth2_.reset();
    faults_.clear();
    for (auto& entry : services_) {
        entry.service->reset();
    }
    log_.clear();
}

} // namespace zelto::sandbox
