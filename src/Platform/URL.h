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

// An absolute URL by the grammar of RFC 3986, kept exactly as given. It never contains what is not a URL: a
// relative reference (no scheme), a blank, a control character, a character outside ASCII, an invalid escape,
// a port above 65535, or, for http and https, an absent host or one with escapes.
class URL {
  public:
    // Takes time linear in the length, which is not limited. `nullopt` if the text is not a URL.
    static std::optional<URL> parse(std::string_view text);

    // The file: URL of a path, which is made absolute first. Bytes that a URL cannot hold are
    // percent-encoded.
    static URL file(const std::filesystem::path& path);

    // Resolves a reference, relative or not, against this URL (RFC 3986, section 5.2); `nullopt` if the
    // result is not a URL.
    std::optional<URL> resolving(std::string_view reference) const;

    // Appends a path segment, percent-encoded; "/" in it becomes %2F. Query and fragment stay.
    URL appendingPathComponent(std::string_view component) const;

    const std::string& absoluteString() const { return text_; }

    // Lower case, without ":".
    std::string scheme() const;

    // As written, escapes included; `nullopt` if there is none.
    std::optional<std::string> userInfo() const;

    // Whether the scheme is followed by "//", even with an empty host.
    bool hasAuthority() const;

    // Lower case; an IPv6 address without its brackets; empty if there is none.
    std::string host() const;

    std::optional<std::uint16_t> port() const;

    // Decoded; as written if the decoded form is not UTF-8.
    std::string path() const;
    std::string percentEncodedPath() const;

    // As written, escapes included, without "?" and "#".
    std::optional<std::string> query() const;
    std::optional<std::string> fragment() const;

    // The decoded last part of the path, ignoring a "/" at the end; empty if there is none. It may contain
    // any character, even "/": cleanedFileName makes a file name of it.
    std::string lastPathComponent() const;

    // What follows the last "." of lastPathComponent; empty for a name without one and for ".name".
    std::string pathExtension() const;

    bool isFile() const;

    // The path of a file: URL of this machine; empty for any other URL, and for one with %00.
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
