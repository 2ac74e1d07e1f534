#pragma once

#include <Platform/URL.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// One "name=value" of a query, or "name" only. Both are decoded: url() percent-encodes what a query item
// cannot hold, including "&", "=", "+" and blanks.
struct URLQueryItem {
    std::string name;
    std::optional<std::string> value;

    bool operator==(const URLQueryItem&) const = default;
};

// The items of a form (application/x-www-form-urlencoded), as in bodies, queries and fragments: decoded, with
// "+" as a blank; an item without "=" has no value. `nullopt` if an escape is invalid or a text is not UTF-8.
std::optional<std::vector<URLQueryItem>> parseFormItems(std::string_view text);

// The parts of a URL, which can be changed and put together again. A URL that is put together unchanged means
// the same, and the query items keep their order; only the escapes of the query, the case of scheme and host,
// and the spelling of the port may differ.
struct URLComponents {
    std::string scheme;
    std::optional<std::string> userInfo; // with its escapes
    std::optional<std::string> host;     // an IPv6 address without its brackets; "" for "file:///x"
    std::optional<std::uint16_t> port;
    std::string path; // with its escapes; foreign text is added by percentEncode(text, pathSegment)
    std::vector<URLQueryItem> queryItems;
    std::optional<std::string> fragment; // with its escapes

    static std::optional<URLComponents> parse(std::string_view text);
    static URLComponents of(const URL& url);

    // `nullopt` if a part contains what would end it, or if the whole is not a URL.
    std::optional<URL> url() const;

    // The value of the first item of that name; `nullopt` if there is none or it has no value.
    std::optional<std::string> queryValue(std::string_view name) const;

    // Replaces the first item of that name and removes further ones, or appends one.
    void setQueryItem(std::string_view name, std::string value);

    bool operator==(const URLComponents&) const = default;
};

} // namespace zelto
