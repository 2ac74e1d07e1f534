#pragma once

// Internal to URL and the transport: the grammar of RFC 3986, sections 3 and 4.3.

#include <cstdint>
#include <optional>
#include <string_view>

namespace zelto {

// The five components; absent is not the same as empty. Any text can be split, a relative reference too.
struct URLSplit {
    std::optional<std::string_view> scheme;
    std::optional<std::string_view> authority;
    std::string_view path;
    std::optional<std::string_view> query;
    std::optional<std::string_view> fragment;
};

URLSplit splitURL(std::string_view text);

// The parts of a well-formed authority; the host without brackets.
struct URLAuthority {
    std::optional<std::string_view> userInfo;
    std::string_view host;
    std::string_view port;
};

URLAuthority splitURLAuthority(std::string_view text);

// `nullopt` for an empty text and for what is not a port number.
std::optional<std::uint16_t> portNumberOf(std::string_view digits);

bool isAbsoluteURL(std::string_view text);

} // namespace zelto
