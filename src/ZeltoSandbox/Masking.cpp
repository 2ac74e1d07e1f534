#include <ZeltoSandbox/Masking.h>

#include <ZeltoSandbox/OAuth/SecretTable.h>

#include <Platform/ASCII.h>
#include <Platform/JSON/JSONValue.h>
#include <Platform/PercentEncoding.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <array>

namespace zelto::sandbox {

namespace {

constexpr std::string_view mask = "***";
constexpr std::size_t maximumShownBody = 8192;
constexpr std::size_t maximumShownField = 4096;
constexpr std::size_t maximumReadBody = std::size_t{256} << 10;
constexpr std::size_t maximumRelatedBody = std::size_t{64} << 20; // whose parts are searched

// In lower case, without "_" and "-".
constexpr std::array<std::string_view, 13> secretNames = {
    "key",    "token",     "code",      "secret", "password",   "passwd",       "pwd",
    "apikey", "clientkey", "assertion", "sig",    "passphrase", "authorization"};
constexpr std::array<std::string_view, 9> secretEndings = {
    "token", "secret", "password", "verifier", "assertion", "apikey", "signature", "cookie", "authorization"};

bool isSecretName(std::string_view name) {
    std::string plain;
    for (const char c : name) {
        if (c != '_' && c != '-') {
            plain.push_back(toASCIILower(c));
        }
    }
    return std::ranges::find(secretNames, plain) != secretNames.end() ||
           std::ranges::any_of(secretEndings,
                               [&](std::string_view ending) { return plain.ends_with(ending); });
}

bool isTokenCharacter(char c) {
    return isASCIIAlphanumeric(c) || c == '-' || c == '_';
}

// Without the secrets that the sandbox has issued.
std::string withoutOwnSecrets(std::string_view text) {
    std::string result;
    for (;;) {
        const auto found = text.find(secretPrefix);
        result += text.substr(0, found);
        if (found == std::string_view::npos) {
            return result;
        }
        text.remove_prefix(found);
        result += mask;
        while (!text.empty() && isTokenCharacter(text.front())) {
            text.remove_prefix(1);
        }
    }
}

// The same for percent-encoded text, in which a secret may be encoded.
std::string withoutOwnEscapedSecrets(std::string_view text) {
    auto plain = withoutOwnSecrets(text);
    const auto decoded = percentDecodeBytes(plain);
    return decoded && decoded->find(secretPrefix) != std::string::npos ? std::string(mask) : plain;
}

// "name=value&…" with the values of secret names masked.
std::string maskedForm(std::string_view form) {
    std::string result;
    while (!form.empty()) {
        const auto end = std::min(form.find('&'), form.size());
        const auto item = form.substr(0, end);
        const auto equals = std::min(item.find('='), item.size());
        const auto name = parseFormItems(item.substr(0, equals));
        const bool isSecret = !name || name->empty() || isSecretName(name->front().name);
        result += withoutOwnEscapedSecrets(item.substr(0, equals));
        if (equals < item.size()) {
            result += '=';
            result += isSecret ? std::string(mask) : withoutOwnEscapedSecrets(item.substr(equals + 1));
        }
        if (end < form.size()) {
            result.push_back('&');
        }
        form.remove_prefix(std::min(end + 1, form.size()));
    }
    return result;
}

// The segment of a path that a credential follows.
bool isBeforeSecret(std::string_view segment) {
    return percentDecodeBytes(segment) == "access-tokens";
}

std::string maskedPath(std::string_view path) {
    std::string result;
    bool isSecret = false;
    while (!path.empty()) {
        const auto end = std::min(path.find('/', 1), path.size());
        const auto slash = path.starts_with('/') ? std::size_t{1} : 0;
        const auto segment = path.substr(slash, end - slash);
        result.append(path.substr(0, slash))
            .append(isSecret && !segment.empty() ? std::string(mask) : withoutOwnEscapedSecrets(segment));
        isSecret = isBeforeSecret(segment);
        path.remove_prefix(end);
    }
    return result;
}

JSONValue maskedJSON(const JSONValue& value) {
    if (const auto* array = value.asArray()) {
        JSONValue::Array masked;
        for (const auto& each : *array) {
            masked.push_back(maskedJSON(each));
        }
        return masked;
    }
    if (const auto* object = value.asObject()) {
        JSONObject masked;
        for (const auto& [key, member] : *object) {
            const bool hides =
                isSecretName(key) && !member.asObject() && !member.asArray() && !member.isNull();
            masked.set(withoutOwnSecrets(key), hides ? JSONValue(mask) : maskedJSON(member));
        }
        return masked;
    }
    if (const auto* text = value.asString()) {
        return withoutOwnSecrets(*text);
    }
    return value;
}

std::string cut(std::string text, std::size_t limit) {
    if (text.size() > limit) {
        text.resize(limit);
        text.resize(validUTF8Length(text));
        text += "…";
    }
    return text;
}

// The parts of an upload: their kinds and sizes, and JSON as it stands. Empty for a broken one.
std::string relatedText(const SandboxRequest& request) {
    const auto* type = request.head.field("Content-Type");
    const auto parts = parseRelated(SpoolRange::all(request.body),
                                    headerParameter(type ? *type : std::string(), "boundary").value_or(""));
    std::string text;
    for (const auto& part : parts.value_or(std::vector<BodyPart>())) {
        const auto* partType = part.field("Content-Type");
        text += withoutOwnSecrets(repairedUTF8(partType ? *partType : std::string("(no Content-Type)"))) +
                ", " + std::to_string(part.content.size) + " bytes\n";
        const bool isJSON = partType && mediaTypeOf(*partType) == "application/json";
        if (const auto json = JSONValue::parse(isJSON ? part.content.text(maximumReadBody) : std::string())) {
            text += maskedJSON(*json).text(2).value_or("") + "\n";
        }
    }
    return text;
}

std::string partsText(const std::vector<FormPart>& parts) {
    std::string text;
    for (const auto& part : parts) {
        text += part.name;
        if (part.fileName) {
            text += " (" + *part.fileName + ")";
        }
        text += ": " + part.contentType + ", " + std::to_string(part.content.size) + " bytes";
        if (!part.fileName && part.contentType.starts_with("text/")) {
            const auto value = part.content.text(maximumShownField);
            text += ": ";
            text += isSecretName(part.name) ? std::string(mask) : repairedUTF8(value);
        }
        text += "\n";
    }
    return withoutOwnSecrets(text);
}

} // namespace

std::vector<HTTPHeaderField> maskedFields(const std::vector<HTTPHeaderField>& fields) {
    std::vector<HTTPHeaderField> masked;
    for (const auto& field : fields) {
        auto value = repairedUTF8(field.value);
        if (isSecretName(field.name)) {
            // The scheme of an Authorization is no secret.
            const auto blank = value.find(' ');
            const bool hasScheme = blank != std::string::npos && blank < 20 &&
                                   std::ranges::all_of(value.substr(0, blank), isTokenCharacter);
            value = hasScheme ? value.substr(0, blank + 1).append(mask) : std::string(mask);
        }
        masked.push_back(
            {withoutOwnSecrets(repairedUTF8(field.name)), cut(withoutOwnSecrets(value), maximumShownField)});
    }
    return masked;
}

std::string maskedTarget(std::string_view target) {
    const auto question = std::min(target.find('?'), target.size());
    auto masked = maskedPath(target.substr(0, question));
    if (question < target.size()) {
        masked += '?' + maskedForm(target.substr(question + 1));
    }
    return cut(repairedUTF8(masked), maximumShownBody);
}

std::string shownBody(const SandboxRequest& request) {
    if (!request.body || request.body->size() == 0) {
        return {};
    }
    if (!request.parts.empty()) {
        return cut(repairedUTF8(partsText(request.parts)), maximumShownBody);
    }
    const auto& type = request.contentType;
    if (type == "multipart/related" && request.body->size() <= maximumRelatedBody) {
        return cut(relatedText(request), maximumShownBody);
    }
    const bool isJSON = type == "application/json" || type.ends_with("+json");
    if (!isJSON && !type.starts_with("text/") && type != "application/x-www-form-urlencoded") {
        return {};
    }
    const auto text = SpoolRange::all(request.body).text(maximumReadBody);
    if (type == "application/x-www-form-urlencoded") {
        return cut(repairedUTF8(maskedForm(text)), maximumShownBody);
    }
    if (isJSON) {
        const auto json = JSONValue::parse(text);
        return json ? cut(maskedJSON(*json).text(2).value_or(""), maximumShownBody)
                    : std::string("(no JSON that could be masked)");
    }
    return cut(withoutOwnSecrets(repairedUTF8(text)), maximumShownBody);
}

} // namespace zelto::sandbox
