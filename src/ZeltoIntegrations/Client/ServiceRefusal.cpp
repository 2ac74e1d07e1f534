#include <ZeltoIntegrations/Client/ServiceRefusal.h>

#include <ZeltoCommonLogger/LogMasking.h>

#include <Platform/HTTP/SendingErrors.h>
#include <Platform/JSON/JSONValue.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <initializer_list>

namespace zelto {

namespace {

// A longer text without JSON is a page, not a message.
constexpr std::size_t maximumPlainTextSize = 2000;

// Controls, and the marks that would change how the text around them is shown.
bool isUnshown(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || (c >= 0x200B && c <= 0x200F) ||
           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2060 && c <= 0x206F) || c == 0xFEFF;
}

bool isBlankCharacter(std::string_view sequence, char32_t c) {
    return isUnshown(c) || isBlank(sequence);
}

std::string inOneLine(const std::string& text) {
    std::string line;
    for (std::string_view left = text; !left.empty();) {
        const auto next = firstCodePoint(left);
        const auto sequence = left.substr(0, next.length);
        if (!isBlankCharacter(sequence, next.value)) {
            line += sequence;
        } else if (!line.empty() && line.back() != ' ') {
            line += ' ';
        }
        left.remove_prefix(next.length);
    }
    return std::string(trimmed(line));
}

std::string textOf(const JSONValue* value) {
    const auto* text = value ? value->asString() : nullptr;
    return text && !isBlank(*text) ? *text : std::string();
}

// The first member that is a text.
std::string textAt(const JSONObject& object, std::initializer_list<std::string_view> keys) {
    for (const auto key : keys) {
        if (auto text = textOf(object.find(key)); !text.empty()) {
            return text;
        }
    }
    return {};
}

// An error that is a text, or an object with a message.
std::string messageOf(const JSONValue& error) {
    if (const auto* object = error.asObject()) {
        return textAt(*object, {"message", "error_description", "description", "detail", "error"});
    }
    return textOf(&error);
}

std::string messagesOf(const JSONValue::Array& errors) {
    std::string all;
    for (const auto& each : errors) {
        if (const auto message = messageOf(each); !message.empty()) {
            all += (all.empty() ? "" : "; ") + message;
        }
    }
    return all;
}

std::string messageIn(const JSONObject& object) {
    if (const auto* errors = object.find("errors"); errors && errors->asArray()) {
        if (auto messages = messagesOf(*errors->asArray()); !messages.empty()) {
            return messages;
        }
    }
    if (const auto* error = object.find("error"); error && error->asObject()) {
        if (auto message = messageOf(*error); !message.empty()) {
            return message;
        }
    }
    return textAt(object, {"error_description", "message", "error_summary", "reason", "detail", "description",
                           "msg", "error", "errorCode"});
}

std::string messageOfBody(const JSONValue& body) {
    if (const auto* object = body.asObject()) {
        return messageIn(*object);
    }
    const auto* array = body.asArray();
    return array ? messagesOf(*array) : textOf(&body);
}

constexpr int conflict = 409;

bool isForSize(int status) {
    constexpr int contentTooLarge = 413;
    constexpr int addressTooLong = 414;
    return status == contentTooLarge || status == addressTooLong;
}

} // namespace

std::string cleanedWords(std::string_view text) {
    const auto line = inOneLine(maskSecrets(repairedUTF8(text)));
    return escapeControlCharacters(prefixCharacters(line, ServiceRefusal::maximumLength));
}

std::string wordsOfErrorBody(std::string_view body) {
    const auto text = trimmed(body);
    if (const auto json = JSONValue::parse(text)) {
        return cleanedWords(messageOfBody(*json));
    }
    const bool isMessage = text.size() <= maximumPlainTextSize && isValidUTF8(text) &&
                           !text.starts_with('<') && !text.starts_with('{') && !text.starts_with('[');
    return isMessage ? cleanedWords(text) : std::string();
}

std::optional<ServiceRefusal> refusalInSuccess(std::string_view body) {
    const auto json = JSONValue::parse(body);
    const auto* object = json ? json->asObject() : nullptr;
    const auto* ok = object ? object->find("ok") : nullptr;
    if (!ok || *ok != JSONValue(false)) {
        return std::nullopt;
    }
    return ServiceRefusal{cleanedWords(messageIn(*object))};
}

std::optional<ServiceRefusal> serviceRefusal(std::uint64_t requestSize, const std::optional<Data>& data,
                                             const std::shared_ptr<const URLResponse>& response,
                                             const std::optional<URLError>& error) {
    if (error || !data) {
        return ServiceRefusal{{}, error && isBeforeSending(error->code)};
    }
    const auto* http = dynamic_cast<const HTTPURLResponse*>(response.get());
    if (http && isSuccess(http->statusCode())) {
        return std::nullopt;
    }
    ServiceRefusal refusal{wordsOfErrorBody(viewOf(*data)), false};
    if (http && isForSize(http->statusCode())) {
        refusal.excessiveSize = requestSize;
    }
    refusal.isConflict = http && http->statusCode() == conflict;
    return refusal;
}

} // namespace zelto
