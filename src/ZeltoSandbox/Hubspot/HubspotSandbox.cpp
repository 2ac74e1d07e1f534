#include <ZeltoSandbox/Hubspot/HubspotSandbox.h>

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/Hubspot/HubspotJSON.h>
#include <ZeltoSandbox/JSONBody.h>
#include <ZeltoSandbox/ShownMail.h>

#include <Platform/ASCII.h>
#include <Platform/Numbers.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::uint64_t maximumBody = std::uint64_t{64} << 20;
constexpr std::size_t maximumRecent = 110; // requests
constexpr TimeInterval recentTime{10};
constexpr auto readContacts = "crm.objects.contacts.read";
constexpr auto writeContacts = "crm.objects.contacts.write";
constexpr std::string_view htmlProperty = "hs_email_html";
constexpr auto fullSandbox = "there is as much as the sandbox keeps; reset it";

Result<JSONValue, SandboxResponse> bodyOf(const SandboxRequest& request) {
    auto body = jsonObject(request, maximumBody);
    if (body) {
        return *std::move(body);
    }
    const auto& problem = body.error();
    return failure(problem.status == 400 ? HubspotError::invalidInput(problem.text).response()
                                         : HubspotError{problem.status, "VALIDATION_ERROR",
                                                        std::string(reasonPhrase(problem.status))}
                                               .response()
                                               .because(problem.text));
}

bool isTokenText(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) {
        return isASCIIAlphanumeric(c) || c == '-' || c == '_' || c == '.';
    });
}

std::uint64_t sizeOf(const JSONObject& texts) {
    std::uint64_t size = 0;
    for (const auto& [name, text] : texts) {
        size += name.size() + text.asString()->size();
    }
    return size;
}

} // namespace

const SandboxEndpoint<HubspotSandbox> HubspotSandbox::endpoints[] = {
    {"GET", "crm/v3/pipelines/contacts/contacts-lifecycle-pipeline/stages", &HubspotSandbox::stageList,
     readContacts},
    {"GET", "crm/v3/objects/contacts/*", &HubspotSandbox::contact, readContacts},
    {"POST", "crm/v3/objects/contacts", &HubspotSandbox::addContact, writeContacts},
    {"POST", "crm/v3/objects/emails", &HubspotSandbox::addEmail, writeContacts},
    {"POST", "crm/v3/objects/notes", &HubspotSandbox::addNote, writeContacts},
    {"POST", "crm/v3/objects/meetings", &HubspotSandbox::addMeeting, writeContacts},
};

std::unique_ptr<SandboxService> HubspotSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<HubspotSandbox>(context);
}

HubspotSandbox::HubspotSandbox(SandboxContext& context)
    : context_(context), store_(std::make_unique<HubspotStore>()) {}

SandboxResponse HubspotSandbox::respond(const SandboxRequest& request) {
    // What a token stands for is told to whoever has it.
    const bool isTokenRequest =
        request.method == "GET" && pathFits("oauth/v1/access-tokens/*", request.segments);
    const auto grant = bearerGrant(request, context_.tokens, "Hubspot");
    if (!grant && (!isTokenRequest || request.head.field("Authorization"))) {
        return refusedToken(request, grant.error());
    }
    if (context_.settings.publishedLimits && !isWithinRate()) {
        return failure(429);
    }
    if (isTokenRequest) {
        return token(request);
    }
    const auto* endpoint = endpointFor<HubspotSandbox>(request, endpoints);
    if (!endpoint) {
        return failure(404).because("the sandbox does not have it");
    }
    if (!coversScope(**grant, endpoint->scope)) {
        return HubspotError::missingScope(endpoint->scope)
            .response()
            .because("the token does not have the scope " + std::string(endpoint->scope));
    }
    return (this->*endpoint->handler)(request);
}

SandboxResponse HubspotSandbox::refusedToken(const SandboxRequest& request, const std::string& reason) {
    const auto token = bearerToken(request).value_or("");
    const auto end = context_.tokens.accessEnd(token);
    if (!end || context_.tokens.status("Hubspot", token) != TokenStatus::expired) {
        return failure(401).because(reason);
    }
    const auto seconds = std::max(0.0, (Date::now() - *end).count());
    return HubspotError::expiredToken(static_cast<std::uint64_t>(seconds)).response().because(reason);
}

bool HubspotSandbox::isWithinRate() {
    const auto now = Date::now();
    while (!recent_.empty() && recent_.front() + recentTime <= now) {
        recent_.pop_front();
    }
    if (recent_.size() >= maximumRecent) {
        return false;
    }
    recent_.push_back(now);
    return true;
}

SandboxResponse HubspotSandbox::failure(int status) const {
    return HubspotError::ofStatus(status).response();
}

SandboxResponse HubspotSandbox::token(const SandboxRequest& request) {
    const auto& token = request.segments.back();
    if (!isTokenText(token)) {
        return HubspotError::validation("The access token must have the correct format").response();
    }
    const auto* grant = context_.tokens.access(token);
    if (!grant || grant->service != "Hubspot") {
        return HubspotError{404, "OBJECT_NOT_FOUND", "The access token is unknown or has expired"}.response();
    }
    const auto end = context_.tokens.accessEnd(token);
    const auto left = end ? (*end - Date::now()).count() : 0;
    return SandboxResponse::json(hubspotTokenJSON(token, grant->scope, static_cast<std::int64_t>(left)));
}

SandboxResponse HubspotSandbox::stageList(const SandboxRequest&) {
    JSONValue::Array results;
    for (const auto& stage : stages()) {
        results.push_back(hubspotStageJSON(stage, results.size()));
    }
    return SandboxResponse::json(JSONObject{{"results", std::move(results)}});
}

SandboxResponse HubspotSandbox::contact(const SandboxRequest& request) {
    const auto& key = request.segments.back();
    const auto property = request.queryValue("idProperty").value_or("hs_object_id");
    if (property != "email" && property != "hs_object_id") {
        return HubspotError::validation("Property \"" + property + "\" is not a unique property of CONTACT")
            .response();
    }
    const auto found = property == "email" ? store_->findContactByEmail(key, additionalContacts())
                                           : store_->findContact(key, additionalContacts());
    return found ? SandboxResponse::json(hubspotFoundContactJSON(*found)) : failure(404);
}

SandboxResponse HubspotSandbox::addContact(const SandboxRequest& request) {
    const auto body = bodyOf(request);
    if (!body) {
        return body.error();
    }
    auto contact = readHubspotContact(*body, stages());
    if (!contact) {
        return contact.error().response();
    }
    const auto email = contact->text("email");
    if (const auto existing = store_->findContactByEmail(email, additionalContacts())) {
        return HubspotError::contactExists(existing->id).response();
    }
    if (!store_->hasSpaceForContact()) {
        return failure(403).because(fullSandbox);
    }
    auto& concurrent = context_.settings.hubspot.concurrentContacts;
    if (concurrent > 0 && !email.empty()) {
        --concurrent;
        const auto& other = store_->addContact({.properties = {{"email", email}}});
        return HubspotError::contactExists(other.id).response();
    }
    return SandboxResponse::json(hubspotContactJSON(store_->addContact(*std::move(contact))), 201);
}

SandboxResponse HubspotSandbox::addEmail(const SandboxRequest& request) {
    return addActivity(HubspotActivityType::email, request);
}

SandboxResponse HubspotSandbox::addNote(const SandboxRequest& request) {
    return addActivity(HubspotActivityType::note, request);
}

SandboxResponse HubspotSandbox::addMeeting(const SandboxRequest& request) {
    return addActivity(HubspotActivityType::meeting, request);
}

SandboxResponse HubspotSandbox::addActivity(HubspotActivityType type, const SandboxRequest& request) {
    const auto body = bodyOf(request);
    if (!body) {
        return body.error();
    }
    auto read = readHubspotActivity(type, *body, [&](std::string_view id) {
        return store_->findContact(id, additionalContacts()).has_value();
    });
    if (!read) {
        return read.error().response();
    }
    auto activity = *std::move(read);
    auto properties = activity.properties;
    activity.properties.erase(htmlProperty);
    const auto size = sizeOf(activity.properties);
    if (!store_->hasSpaceForActivity(size)) {
        return failure(403).because(fullSandbox);
    }
    if (const auto* html = properties.find(htmlProperty)) {
        activity.shownHTML = storedHTML(*html->asString());
        if (activity.shownHTML.empty()) {
            return failure(403).because(fullSandbox);
        }
    }
    auto added = store_->addActivity(std::move(activity), size);
    added.properties = std::move(properties);
    return SandboxResponse::json(hubspotActivityJSON(added), 201);
}

std::string HubspotSandbox::storedHTML(const std::string& html) {
    SpoolWriter writer(context_.space);
    return writer.append(html) ? context_.files.addDocument(SpoolRange::all(writer.finish()), shownMailHTML)
                               : std::string();
}

const std::vector<HubspotStageRecord>& HubspotSandbox::stages() const {
    return store_->stages(context_.settings.additionalTargets);
}

JSONObject HubspotSandbox::state() const {
    return hubspotState(*store_, stages(), additionalContacts());
}

void HubspotSandbox::reset() {
    store_ = std::make_unique<HubspotStore>();
    recent_.clear();
}

} // namespace zelto::sandbox
