#include <Platform/URLComponents.h>

#include <Platform/PercentEncoding.h>

#include <algorithm>

namespace zelto {

namespace {

constexpr auto npos = std::string_view::npos;

std::string decoded(std::string_view text) {
    return percentDecodeBytes(text).value_or(std::string(text));
}

std::vector<URLQueryItem> itemsOf(std::string_view query) {
    std::vector<URLQueryItem> items;
    for (;;) {
        const auto end = query.find('&');
        const auto item = query.substr(0, end);
        const auto equals = item.find('=');
        auto& added = items.emplace_back(decoded(item.substr(0, equals)));
        if (equals != npos) {
            added.value = decoded(item.substr(equals + 1));
        }
        if (end == npos) {
            return items;
        }
        query.remove_prefix(end + 1);
    }
}

std::optional<std::string> decodedWord(std::string_view word) {
    std::string text(word);
    std::ranges::replace(text, '+', ' ');
    return percentDecode(text);
}

void appendQuery(std::string& text, const std::vector<URLQueryItem>& items) {
    char separator = '?';
    for (const auto& item : items) {
        text += separator;
        text += percentEncodeBytes(item.name, AllowedCharacters::queryItem);
        if (item.value) {
            text += '=';
            text += percentEncodeBytes(*item.value, AllowedCharacters::queryItem);
        }
        separator = '&';
    }
}

bool has(std::string_view text, std::string_view characters) {
    return text.find_first_of(characters) != npos;
}

// A part with a character that ends it would be read as two parts.
bool partsKeepToThemselves(const URLComponents& parts) {
    if (has(parts.scheme, ":/?#") || has(parts.path, "?#")) {
        return false;
    }
    if (!parts.host) {
        return !parts.userInfo && !parts.port && !parts.path.starts_with("//");
    }
    return !has(parts.userInfo.value_or(""), "@/?#") && !has(*parts.host, "@/?#[]") &&
           (parts.path.empty() || parts.path.starts_with('/'));
}

} // namespace

std::optional<std::vector<URLQueryItem>> parseFormItems(std::string_view text) {
    std::vector<URLQueryItem> items;
    while (!text.empty()) {
        const auto item = text.substr(0, text.find('&'));
        text.remove_prefix(std::min(text.size(), item.size() + 1));
        if (item.empty()) {
            continue;
        }
        const auto equals = item.find('=');
        auto name = decodedWord(item.substr(0, equals));
        auto value = equals == npos ? std::nullopt : decodedWord(item.substr(equals + 1));
        if (!name || (equals != npos && !value)) {
            return std::nullopt;
        }
        items.push_back({*std::move(name), std::move(value)});
    }
    return items;
}

std::optional<URLComponents> URLComponents::parse(std::string_view text) {
    const auto url = URL::parse(text);
    return url ? std::optional(of(*url)) : std::nullopt;
}

URLComponents URLComponents::of(const URL& url) {
    URLComponents parts;
    parts.scheme = url.scheme();
    parts.userInfo = url.userInfo();
    parts.port = url.port();
    parts.path = url.percentEncodedPath();
    parts.fragment = url.fragment();
    if (url.hasAuthority()) {
        parts.host = url.host();
    }
    if (const auto query = url.query()) {
        parts.queryItems = itemsOf(*query);
    }
    return parts;
}

std::optional<URL> URLComponents::url() const {
    if (!partsKeepToThemselves(*this)) {
        return std::nullopt;
    }
    std::string text = scheme + ":";
    if (host) {
        text += "//";
        if (userInfo) {
            text += *userInfo + "@";
        }
        text += has(*host, ":") ? "[" + *host + "]" : *host;
        if (port) {
            text += ":" + std::to_string(*port);
        }
    }
    text += path;
    appendQuery(text, queryItems);
    if (fragment) {
        text += "#" + *fragment;
    }
    return URL::parse(text);
}

std::optional<std::string> URLComponents::queryValue(std::string_view name) const {
    const auto found = std::ranges::find(queryItems, name, &URLQueryItem::name);
    return found == queryItems.end() ? std::nullopt : found->value;
}

void URLComponents::setQueryItem(std::string_view name, std::string value) {
    const auto found = std::ranges::find(queryItems, name, &URLQueryItem::name);
    if (found == queryItems.end()) {
        queryItems.push_back({std::string(name), std::move(value)});
        return;
    }
    found->value = std::move(value);
    const auto further = std::remove_if(found + 1, queryItems.end(),
                                        [&](const URLQueryItem& each) { return each.name == name; });
    queryItems.erase(further, queryItems.end());
}

} // namespace zelto
