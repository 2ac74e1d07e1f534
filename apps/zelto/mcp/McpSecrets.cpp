#include "mcp/McpSecrets.h"

#include <Platform/ASCII.h>
#include <Platform/Text.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <malloc.h>
#include <optional>
#include <string_view>

namespace zelto::cli {

namespace {

constexpr std::size_t minimumLength = 8;
constexpr std::string_view mask = "***";

bool holdsSecret(std::string_view name) {
    constexpr std::array plainNames{"user-agent", "origin", "referer", "cache-control", "pragma"};
    const auto lower = toASCIILower(name);
    return !lower.starts_with("accept") && !lower.starts_with("content-") &&
           std::ranges::find(plainNames, lower) == plainNames.end();
}

std::string asJSON(const std::string& text) {
    const auto json = JSONValue(text).text().value_or("\"\"");
    return json.substr(1, json.size() - 2);
}

std::size_t find(std::string_view text, const std::vector<std::string>& secrets, std::size_t from,
                 std::size_t& length) {
    auto first = std::string_view::npos;
    for (const auto& each : secrets) {
        const auto found = text.find(each, from);
        if (found < first) {
            first = found;
            length = each.size();
        }
    }
    return first;
}

// The text with the mask in place of each secret; `nullopt` if there is none.
std::optional<std::string> masked(std::string_view text, const std::vector<std::string>& secrets) {
    std::size_t length = 0;
    auto found = find(text, secrets, 0, length);
    if (found == std::string_view::npos) {
        return std::nullopt;
    }
    std::string result;
    std::size_t taken = 0;
    while (found != std::string_view::npos) {
        result.append(text, taken, found - taken).append(mask);
        taken = found + length;
        found = find(text, secrets, taken, length);
    }
    return result.append(text, taken);
}

std::size_t endOfString(std::string_view json, std::size_t at) {
    while (at < json.size() && json[at] != '"') {
        at += json[at] == '\\' ? 2 : 1;
    }
    return std::min(at, json.size());
}

} // namespace

McpSecrets::McpSecrets(const std::map<std::string, std::string>& headers) {
    const auto add = [&](std::string_view secret) {
        if (secret.size() >= minimumLength) {
            plain_.emplace_back(secret);
        }
    };
    for (const auto& [name, value] : headers) {
        if (!holdsSecret(name)) {
            continue;
        }
        add(value);
        // The credential may appear without its scheme.
        if (const auto blank = value.find(' '); blank != std::string::npos) {
            add(trimmed(std::string_view(value).substr(blank)));
        }
    }
    std::ranges::sort(plain_, std::greater(), &std::string::size);
    std::ranges::transform(plain_, std::back_inserter(inJSON_), asJSON);
    std::erase_if(inJSON_, [](const auto& each) { return each.empty(); });
}

void McpSecrets::maskText(std::string& text) const {
    if (auto result = masked(text, plain_)) {
        text = *std::move(result);
    }
}

void McpSecrets::maskJSON(std::string& json) const {
    std::size_t length = 0;
    if (find(json, inJSON_, 0, length) == std::string::npos) {
        return;
    }
    std::string result;
    for (std::size_t at = 0; at < json.size();) {
        const auto quote = std::min(json.find('"', at), json.size());
        const auto begin = std::min(quote + 1, json.size());
        const auto end = endOfString(json, begin);
        result.append(json, at, begin - at);
        const std::string_view content = std::string_view(json).substr(begin, end - begin);
        const auto shown = masked(content, inJSON_);
        result.append(shown ? std::string_view(*shown) : content);
        at = end;
        if (at < json.size()) {
            result += json[at++];
        }
    }
    json = std::move(result);
}

void McpSecrets::returnFreedMemory() {
    ::malloc_trim(0);
}

JSONObject McpSecrets::objectIn(std::string json) {
    auto value = JSONDecoder().decodeInPlace<JSONValue>(json);
    auto* const members = value ? value->asObject() : nullptr;
    return members ? std::move(*members) : JSONObject();
}

void McpSecrets::maskMembers(JSONObject& members) const {
    if (!plain_.empty()) {
        members = membersOf(JSONValue(std::move(members)));
    }
}

void McpSecrets::mask(Report& report) const {
    maskText(report.text);
    maskMembers(report.members);
}

void McpSecrets::mask(Failure& failure) const {
    maskText(failure.message);
    maskText(failure.output);
    maskText(failure.details);
    maskMembers(failure.members);
}

void McpSecrets::mask(MCPToolCallResult& result) const {
    for (auto& item : result.content) {
        if (auto* const text = std::get_if<MCPContentItem::Text>(&item.value)) {
            maskText(text->content.text);
        }
        auto* const embedded = std::get_if<MCPContentItem::EmbeddedResource>(&item.value);
        if (embedded && embedded->content.resource.text) {
            maskText(*embedded->content.resource.text);
        }
    }
}

void McpSecrets::mask(MCPError& error) const {
    auto* const clientError = std::get_if<MCPClientError>(&error.value);
    if (!clientError) {
        return;
    }
    if (auto* const refusal = std::get_if<MCPClientError::JSONRPCFailure>(&clientError->value)) {
        maskText(refusal->error.message);
    } else if (auto* const failed = std::get_if<MCPClientError::ToolCallFailed>(&clientError->value)) {
        mask(failed->result);
    }
}

} // namespace zelto::cli
