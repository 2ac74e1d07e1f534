#pragma once

#include <Platform/URL.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// One "name=value" of a query, or "name" alone. Both are decoded: url() percent-encodes what a query item
// cannot hold, "&", "=", "+" and blanks among it.
struct URLQueryItem {
    std::string name;
    std::optional<std::string> value;

    bool operator==(const URLQueryItem&) const = default;
};

// The items of a form (application/x-www-form-urlencoded), as bodies, queries and fragments hold one:
// decoded,
// "+" is a blank, an item without "=" has no value. Nothing for a broken escape, and for what is not UTF-8.
std::optional<std::vector<URLQueryItem>> parseFormItems(std::string_view text);

// The parts of a URL, to be changed and put together again. A URL that is parsed and put together unchanged
// means the same, and the query items keep their order; only the escapes of the query, the case of scheme and
// host and the writing of the port may differ.
struct URLComponents {
    std::string scheme;
    std::optional<std::string> userInfo; // with its escapes
    std::optional<std::string> host;     // an IPv6 address without its brackets; "" for "file:///x"
    std::optional<std::uint16_t> port;
    std::string path; // with its escapes: foreign text goes in by percentEncode(text, pathSegment)
    std::vector<URLQueryItem> queryItems;
    std::optional<std::string> fragment; // with its escapes

    static std::optional<URLComponents> parse(std::string_view text);
    static URLComponents of(const URL& url);

    // Nothing if a part holds what it cannot, or the whole is no URL: no part can run over into the next.
    std::optional<URL> url() const;

    // The value of the first item of that name; nothing if there is none or it has no value.
    std::optional<std::string> queryValue(std::string_view name) const;

    // Replaces the first item of that name and removes all further ones, or appends one.
    void setQueryItem(std::string_view name, std::string value);

    bool operator==(const URLComponents&) const = default;
};

} // namespace zelto
