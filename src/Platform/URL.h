#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zelto {

// An absolute URL by the grammar of RFC 3986, kept exactly as it was given. What is no URL cannot be held: a
// relative reference (no scheme), a blank, a control character, a character outside ASCII, a broken escape, a
// port above 65535, and for http and https an absent host or one with escapes.
class URL {
  public:
    // Takes time linear in the length; a URL may have any length.
    static std::optional<URL> parse(std::string_view text);

    // The file: URL of a path, made absolute first. Bytes that a URL cannot hold are percent-encoded.
    static URL file(const std::filesystem::path& path);

    // A reference, relative or not, seen from this URL (RFC 3986, section 5.2); nothing if the result is no
    // URL.
    std::optional<URL> resolving(std::string_view reference) const;

    // One more path segment, percent-encoded; "/" in it becomes %2F. A query and a fragment stay.
    URL appendingPathComponent(std::string_view component) const;

    const std::string& absoluteString() const { return text_; }

    // Lower case, without ":".
    std::string scheme() const;

    // As it stands, escapes included; nothing if there is none.
    std::optional<std::string> userInfo() const;

    // Whether "//" stands behind the scheme, with a host or an empty one behind it.
    bool hasAuthority() const;

    // Lower case; an IPv6 address without its brackets; empty if there is none.
    std::string host() const;

    std::optional<std::uint16_t> port() const;

    // Decoded; as it stands if the decoded form is not UTF-8.
    std::string path() const;
    std::string percentEncodedPath() const;

    // As they stand, escapes included, without "?" and "#".
    std::optional<std::string> query() const;
    std::optional<std::string> fragment() const;

    // The decoded last part of the path, a "/" at the end left off; empty if there is none. It may hold any
    // character, "/" too: cleanedFileName makes a file name of it.
    std::string lastPathComponent() const;

    // What follows the last "." of lastPathComponent, as it stands; empty for a name without one and for
    // ".name".
    std::string pathExtension() const;

    bool isFile() const;

    // The path of a file: URL of this machine; empty for any other, and for one with %00.
    std::filesystem::path filePath() const;

    bool operator==(const URL&) const = default;
    std::strong_ordering operator<=>(const URL&) const = default;

  private:
    explicit URL(std::string text) : text_(std::move(text)) {}

    std::string text_;
};

} // namespace zelto

template <> struct std::hash<zelto::URL> {
    std::size_t operator()(const zelto::URL& url) const noexcept {
        return std::hash<std::string>()(url.absoluteString());
    }
};
