#include <ZeltoSandbox/Slack/SlackArguments.h>

#include <Platform/ASCII.h>
#include <Platform/UTF8.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::uint64_t maximumJSON = std::uint64_t{32} << 20;
constexpr std::string_view charsets[] = {"utf-8", "utf8", "iso-8859-1"};

bool isKnown(std::string_view charset) {
    return std::ranges::find(charsets, toASCIILower(charset)) != std::end(charsets);
}

// The text of a value; nullopt for an array, an object or null.
std::optional<std::string> textOf(const JSONValue& value) {
    if (const auto* text = value.asString()) {
        return *text;
    }
    if (value.isNull() || value.asArray() || value.asObject()) {
        return std::nullopt;
    }
    return value.text().value_or("");
}

} // namespace

Result<SlackArguments, SlackError> SlackArguments::read(const SandboxRequest& request, bool takesJSON) {
    SlackArguments arguments;
    arguments.items_ = request.query;
    if (request.method == "POST" && request.body->size() > 0) {
        if (auto problem = arguments.addBody(request, takesJSON)) {
            return failure(*std::move(problem));
        }
    }
    for (const auto& item : arguments.items_) {
        if (!isValidUTF8(item.value.value_or(""))) {
            return failure(SlackError{"invalid_form_data", "\"" + item.name + "\" is not UTF-8"});
        }
    }
    return arguments;
}

std::optional<std::string> SlackArguments::text(std::string_view name) const {
    // What stands in the body counts more than the query.
    const auto found = std::ranges::find(items_.rbegin(), items_.rend(), name, &URLQueryItem::name);
    return found == items_.rend() ? std::nullopt : std::optional(found->value.value_or(""));
}

std::optional<SlackError> SlackArguments::addBody(const SandboxRequest& request, bool takesJSON) {
    const auto* field = request.head.field("Content-Type");
    if (!field || request.contentType.empty()) {
        return SlackError{"missing_post_type", "there is a body without a Content-Type"};
    }
    const auto charset = headerParameter(*field, "charset");
    if (charset && !isKnown(*charset)) {
        return SlackError{"invalid_charset", "the charset is \"" + *charset + "\""};
    }
    if (request.contentType == "application/json") {
        if (!charset) {
            warnings_.push_back("missing_charset");
        }
        return takesJSON ? addJSON(request) : std::nullopt;
    }
    if (request.contentType == "text/plain") {
        return std::nullopt;
    }
    if (request.contentType != "application/x-www-form-urlencoded" &&
        request.contentType != "multipart/form-data") {
        return SlackError{"invalid_post_type", "the Content-Type is " + request.contentType};
    }
    if (!request.bodyProblem.empty()) {
        return SlackError{"invalid_form_data", request.bodyProblem};
    }
    if (charset) {
        warnings_.push_back("superfluous_charset");
    }
    items_.insert(items_.end(), request.form.begin(), request.form.end());
    for (const auto& part : request.parts) {
        if (!part.fileName) {
            items_.push_back({part.name, part.content.text(maximumJSON)});
        }
    }
    return std::nullopt;
}

std::optional<SlackError> SlackArguments::addJSON(const SandboxRequest& request) {
    const auto body = SpoolRange::all(request.body);
    if (body.size > maximumJSON) {
        return SlackError{"msg_too_long",
                          "the body is larger than " + std::to_string(maximumJSON) + " bytes"};
    }
    const auto json = JSONValue::parse(body.text(maximumJSON));
    if (!json) {
        return SlackError{"invalid_json", "the body is not JSON: " + json.error().message()};
    }
    if (!json->asObject()) {
        return SlackError{"json_not_object", "the body is not a JSON object"};
    }
    for (const auto& [key, value] : *json->asObject()) {
        if (auto text = textOf(value)) {
            items_.push_back({key, *std::move(text)});
        }
    }
    return std::nullopt;
}

} // namespace zelto::sandbox
