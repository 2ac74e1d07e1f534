#include "export/RequestDescription.h"

#include "export/PlaceholderSecrets.h"

#include <ZeltoSandbox/Masking.h>

#include <Platform/Text.h>

#include <algorithm>
#include <string_view>

namespace zelto::cli {

namespace {

constexpr std::size_t maximumShownText = std::size_t{64} << 10;
constexpr std::string_view mask = "***";

std::string withoutPlaceholders(std::string text) {
    for (auto at = text.find(placeholderSecret); at != std::string::npos;
         at = text.find(placeholderSecret, at)) {
        text.replace(at, placeholderSecret.size(), mask);
    }
    return text;
}

std::string shownText(std::string_view text) {
    const auto shown = prefixBytes(text, maximumShownText);
    auto masked = withoutPlaceholders(std::string(shown));
    if (shown.size() < text.size()) {
        masked += "… (" + std::to_string(text.size()) + " bytes in all)";
    }
    return masked;
}

std::string shownURL(const SentRequest& request) {
    const auto path = std::min(request.url.find('/', request.url.find("://") + 3), request.url.size());
    return request.url.substr(0, path) + withoutPlaceholders(sandbox::maskedTarget(request.url.substr(path)));
}

std::vector<HTTPHeaderField> shownHeaders(const SentRequest& request) {
    auto headers = sandbox::maskedFields(request.headers);
    for (auto& [name, value] : headers) {
        value = withoutPlaceholders(std::move(value));
    }
    return headers;
}

JSONValue described(const SentPart& part) {
    JSONObject object{{"name", part.name}};
    if (part.fileName) {
        object.set("fileName", *part.fileName);
    }
    object.set("contentType", part.contentType);
    object.set("size", static_cast<std::int64_t>(part.size));
    if (part.text) {
        object.set("text", shownText(*part.text));
    }
    return object;
}

JSONValue described(const SentRequest& request) {
    JSONObject headers;
    for (const auto& [name, value] : shownHeaders(request)) {
        headers.set(name, value);
    }
    JSONObject object{
        {"method", request.method}, {"url", shownURL(request)}, {"headers", std::move(headers)}};
    if (request.bodySize > 0) {
        object.set("bodySize", static_cast<std::int64_t>(request.bodySize));
    }
    if (request.text) {
        object.set("body", shownText(*request.text));
    }
    if (!request.parts.empty()) {
        JSONValue::Array parts;
        std::ranges::transform(request.parts, std::back_inserter(parts),
                               [](const SentPart& part) { return described(part); });
        object.set("parts", std::move(parts));
    }
    return object;
}

std::string bytes(std::uint64_t size) {
    return std::to_string(size) + (size == 1 ? " byte" : " bytes");
}

std::string lineOf(const SentPart& part, const Terminal& terminal) {
    auto line = "    part " + terminal.shown(part.name) + ": ";
    if (part.fileName) {
        line += "file \"" + terminal.shown(*part.fileName) + "\", ";
    }
    line += terminal.shown(part.contentType) + ", " + bytes(part.size);
    if (part.text) {
        line += ": " + terminal.shownLines(shownText(*part.text));
    }
    return line + "\n";
}

std::string linesOfBody(const SentRequest& request, const Terminal& terminal) {
    if (request.bodySize == 0) {
        return {};
    }
    auto lines = "    body: " + bytes(request.bodySize) + "\n";
    if (request.text) {
        return lines + "\n" + terminal.shownLines(shownText(*request.text)) + "\n";
    }
    for (const auto& part : request.parts) {
        lines += lineOf(part, terminal);
    }
    return lines;
}

} // namespace

JSONValue described(const std::vector<SentRequest>& requests) {
    JSONValue::Array all;
    std::ranges::transform(requests, std::back_inserter(all),
                           [](const SentRequest& request) { return described(request); });
    return all;
}

std::string linesOf(const std::vector<SentRequest>& requests, const Terminal& terminal) {
    std::string text;
    std::size_t number = 0;
    for (const auto& request : requests) {
        text += "\n" + std::to_string(++number) + ". " + terminal.shown(request.method) + " " +
                terminal.shown(shownURL(request)) + "\n";
        for (const auto& [name, value] : shownHeaders(request)) {
            text += "    " + terminal.shown(name) + ": " + terminal.shown(value) + "\n";
        }
        text += linesOfBody(request, terminal);
    }
    return text;
}

} // namespace zelto::cli
