#include <ZeltoSandbox/Hubspot/HubspotProperties.h>

#include <Platform/ASCII.h>
#include <Platform/ISO8601.h>
#include <Platform/Numbers.h>
#include <Platform/Text.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumLocalPart = 64; // bytes
constexpr std::size_t maximumAddress = 254;  // bytes
constexpr double millisecondsPerSecond = 1000;

std::optional<Date> dateOf(std::string_view text) {
    if (const auto milliseconds = numberIn<std::int64_t>(text)) {
        return Date::fromUnixSeconds(static_cast<double>(*milliseconds) / millisecondsPerSecond);
    }
    const bool isUTC = text.ends_with('Z') || text.ends_with("+00:00");
    return isUTC && text.contains('T') ? parseISO8601(text) : std::nullopt;
}

bool isLocalPart(std::string_view text) {
    constexpr std::string_view refused = "\"\\()<>[]:;,@";
    const auto isRefused = [&](char c) {
        return (isASCII(c) && !isVisibleASCII(c)) || refused.find(c) != std::string_view::npos;
    };
    return !text.empty() && text.size() <= maximumLocalPart && !text.starts_with('.') &&
           !text.ends_with('.') && !text.contains("..") && std::ranges::none_of(text, isRefused);
}

bool isLabel(std::string_view text) {
    const auto isAllowed = [](char c) { return !isASCII(c) || isASCIIAlphanumeric(c) || c == '-'; };
    return !text.empty() && !text.starts_with('-') && !text.ends_with('-') &&
           std::ranges::all_of(text, isAllowed);
}

bool isHost(std::string_view host) {
    if (!host.contains('.')) {
        return false;
    }
    for (;;) {
        const auto label = host.substr(0, host.find('.'));
        if (!isLabel(label)) {
            return false;
        }
        if (label.size() == host.size()) {
            return label.size() >= 2 && !std::ranges::all_of(label, isASCIIDigit);
        }
        host.remove_prefix(label.size() + 1);
    }
}

} // namespace

bool isHubspotEmail(std::string_view email) {
    const auto at = email.rfind('@');
    return at != std::string_view::npos && email.size() <= maximumAddress &&
           isLocalPart(email.substr(0, at)) && isHost(email.substr(at + 1));
}

HubspotProperties::HubspotProperties(const JSONValue& body, std::span<const std::string_view> known) {
    const auto* properties = body.find("properties");
    if (!properties || !properties->asObject()) {
        inputProblem_ = "\"properties\" has to be an object";
        return;
    }
    for (const auto& [property, value] : *properties->asObject()) {
        if (std::ranges::find(known, property) == known.end()) {
            fail(property, "PROPERTY_DOESNT_EXIST", "Property \"" + property + "\" does not exist");
        } else {
            read(property, value);
        }
    }
}

void HubspotProperties::read(const std::string& property, const JSONValue& value) {
    const auto number = value.asInt64();
    const auto* text = value.asString();
    if (!text && !number && !value.isNull() && inputProblem_.empty()) {
        inputProblem_ = "\"properties." + property + "\" has to be a text";
    }
    if (number || (text && !text->empty())) {
        all_.set(property, number ? std::to_string(*number) : *text);
    }
}

std::string HubspotProperties::text(std::string_view property) const {
    const auto* value = all_.find(property);
    return value ? *value->asString() : std::string();
}

void HubspotProperties::limit(std::string_view property, std::size_t characters) {
    if (const auto count = characterCount(text(property)); count > characters) {
        fail(property, "PROPERTY_VALUE_TOO_LONG",
             "Property \"" + std::string(property) + "\" has " + std::to_string(count) +
                 " characters; the limit is " + std::to_string(characters));
    }
}

std::optional<Date> HubspotProperties::date(std::string_view property) {
    const auto value = text(property);
    const auto date = value.empty() ? std::nullopt : dateOf(value);
    if (!date && !value.empty()) {
        fail(property, "INVALID_DATE",
             value + " is neither an ISO 8601 date and time in UTC nor a number of milliseconds since 1970");
    }
    return date;
}

void HubspotProperties::oneOf(std::string_view property, std::span<const std::string_view> values) {
    const auto value = text(property);
    if (!value.empty() && std::ranges::find(values, value) == values.end()) {
        std::string listed;
        for (const auto each : values) {
            listed.append(listed.empty() ? "" : ", ").append(each);
        }
        fail(property, "INVALID_OPTION", value + " was not one of the allowed options: [" + listed + "]");
    }
}

void HubspotProperties::fail(std::string_view property, std::string code, std::string message) {
    problems_.push_back({std::string(property), std::move(code), std::move(message)});
}

std::optional<HubspotError> HubspotProperties::problem() const {
    if (!inputProblem_.empty()) {
        return HubspotError::invalidInput(inputProblem_);
    }
    return problems_.empty() ? std::nullopt : std::optional(HubspotError::invalidProperties(problems_));
}

} // namespace zelto::sandbox
