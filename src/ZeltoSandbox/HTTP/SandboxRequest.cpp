#include <ZeltoSandbox/HTTP/SandboxRequest.h>

#include <Platform/ASCII.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

// The end of a parameter: the next ";" outside quotes.
std::size_t parameterEnd(std::string_view text) {
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && quoted) {
            ++i;
        } else if (text[i] == '"') {
            quoted = !quoted;
        } else if (text[i] == ';' && !quoted) {
            return i;
        }
    }
    return text.size();
}

// A backslash escapes only a quote or a backslash: browsers and clients do not escape file names of Windows.
std::string unquoted(std::string_view text) {
    if (text.size() < 2 || text.front() != '"' || text.back() != '"') {
        return std::string(text);
    }
    std::string plain;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        if (text[i] == '\\' && i + 2 < text.size() && (text[i + 1] == '"' || text[i + 1] == '\\')) {
            ++i;
        }
        plain.push_back(text[i]);
    }
    return plain;
}

} // namespace

const std::string* RequestHead::field(std::string_view name) const {
    const auto found = std::ranges::find_if(
        fields, [&](const HTTPHeaderField& each) { return equalIgnoringASCIICase(each.name, name); });
    return found == fields.end() ? nullptr : &found->value;
}

std::size_t RequestHead::count(std::string_view name) const {
    return static_cast<std::size_t>(std::ranges::count_if(
        fields, [&](const HTTPHeaderField& each) { return equalIgnoringASCIICase(each.name, name); }));
}

std::optional<std::string> valueOf(const std::vector<URLQueryItem>& items, std::string_view name) {
    const auto found = std::ranges::find(items, name, &URLQueryItem::name);
    return found == items.end() ? std::nullopt : std::optional(found->value.value_or(""));
}

std::optional<std::string> SandboxRequest::queryValue(std::string_view name) const {
    return valueOf(query, name);
}

std::optional<std::string> SandboxRequest::formValue(std::string_view name) const {
    return valueOf(form, name);
}

std::optional<std::string> SandboxRequest::parameter(std::string_view name, std::size_t maximum) const {
    if (auto value = queryValue(name)) {
        return value;
    }
    if (auto value = formValue(name)) {
        return value;
    }
    const auto part = std::ranges::find_if(
        parts, [&](const FormPart& each) { return each.name == name && !each.fileName; });
    return part == parts.end() ? std::nullopt : std::optional(part->content.text(maximum));
}

std::optional<std::string> headerParameter(std::string_view value, std::string_view name) {
    value.remove_prefix(parameterEnd(value));
    while (!value.empty()) {
        value.remove_prefix(1);
        const auto parameter = trimmedBlanks(value.substr(0, parameterEnd(value)));
        value.remove_prefix(parameterEnd(value));
        const auto equals = parameter.find('=');
        if (equals != std::string_view::npos && equalIgnoringASCIICase(parameter.substr(0, equals), name)) {
            return unquoted(parameter.substr(equals + 1));
        }
    }
    return std::nullopt;
}

std::string mediaTypeOf(std::string_view contentType) {
    return toASCIILower(trimmedBlanks(contentType.substr(0, contentType.find(';'))));
}

} // namespace zelto::sandbox
