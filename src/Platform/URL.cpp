#include <Platform/URL.h>

#include <Platform/PercentEncoding.h>

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>
#include <charconv>

namespace zelto {

namespace {

constexpr auto npos = std::string_view::npos;

// The five components of RFC 3986, section 3; what is absent is not the same as what is empty.
struct Split {
    std::optional<std::string_view> scheme;
    std::optional<std::string_view> authority;
    std::string_view path;
    std::optional<std::string_view> query;
    std::optional<std::string_view> fragment;
};

struct Authority {
    std::optional<std::string_view> userInfo;
    std::string_view host;
    std::string_view port;
};

bool isSchemeName(std::string_view text) {
    const auto isLetter = [](char each) { return (each | 0x20) >= 'a' && (each | 0x20) <= 'z'; };
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), [&](char each) {
        return isLetter(each) || (each >= '0' && each <= '9') || each == '+' || each == '-' || each == '.';
    });
}

Split split(std::string_view text) {
    Split parts;
    if (const auto end = text.find_first_of(":/?#"); end != npos && text[end] == ':') {
        if (isSchemeName(text.substr(0, end))) {
            parts.scheme = text.substr(0, end);
            text.remove_prefix(end + 1);
        }
    }
    if (const auto hash = text.find('#'); hash != npos) {
        parts.fragment = text.substr(hash + 1);
        text = text.substr(0, hash);
    }
    if (const auto mark = text.find('?'); mark != npos) {
        parts.query = text.substr(mark + 1);
        text = text.substr(0, mark);
    }
    if (text.starts_with("//")) {
        const auto end = std::min(text.find('/', 2), text.size());
        parts.authority = text.substr(2, end - 2);
        text.remove_prefix(end);
    }
    parts.path = text;
    return parts;
}

Authority splitAuthority(std::string_view text) {
    Authority parts;
    if (const auto at = text.find('@'); at != npos) {
        parts.userInfo = text.substr(0, at);
        text.remove_prefix(at + 1);
    }
    if (const auto bracket = text.find(']'); text.starts_with('[') && bracket != npos) {
        parts.host = text.substr(1, bracket - 1);
        text.remove_prefix(bracket + 1);
    } else {
        const auto colon = std::min(text.find(':'), text.size());
        parts.host = text.substr(0, colon);
        text.remove_prefix(colon);
    }
    if (text.starts_with(':')) {
        parts.port = text.substr(1);
    }
    return parts;
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& each : lower) {
        if (each >= 'A' && each <= 'Z') {
            each = static_cast<char>(each | 0x20);
        }
    }
    return lower;
}

std::optional<std::uint16_t> portNumber(std::string_view digits) {
    std::uint16_t number = 0;
    const auto end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

// What the grammar lets pass and no client could use.
bool isUsable(const Split& parts) {
    const auto authority = splitAuthority(parts.authority.value_or(""));
    if (!authority.port.empty() && !portNumber(authority.port)) {
        return false;
    }
    // "[v1.x]", an address of a version to come; without its brackets it would read as a name.
    if (parts.authority && parts.authority->find('[') != npos && authority.host.find(':') == npos) {
        return false;
    }
    const auto scheme = lowerCase(*parts.scheme);
    return (scheme != "http" && scheme != "https") ||
           (!authority.host.empty() && authority.host.find('%') == npos);
}

std::optional<std::string> copyOf(std::optional<std::string_view> text) {
    return text ? std::optional(std::string(*text)) : std::nullopt;
}

// RFC 3986, section 5.2.4.
std::string withoutDotSegments(std::string_view path) {
    std::string result;
    while (!path.empty()) {
        const auto start = path.starts_with('/') ? std::size_t{1} : std::size_t{0};
        const auto end = std::min(path.find('/', start), path.size());
        const auto segment = path.substr(start, end - start);
        if (segment == "..") {
            const auto slash = result.rfind('/');
            result.resize(slash == npos ? 0 : slash);
        } else if (segment != ".") {
            result += path.substr(0, end);
        }
        if (end == path.size() && (segment == ".." || segment == ".")) {
            result += '/';
        }
        path.remove_prefix(end);
    }
    return result;
}

std::string mergedPath(const Split& base, std::string_view reference) {
    if (base.authority && base.path.empty()) {
        return "/" + std::string(reference);
    }
    const auto slash = base.path.rfind('/');
    return std::string(base.path.substr(0, slash == npos ? 0 : slash + 1)) + std::string(reference);
}

std::string joined(const Split& parts, std::string_view path) {
    std::string text(*parts.scheme);
    text += ':';
    if (parts.authority) {
        text.append("//").append(*parts.authority);
    }
    // Without an authority, "//" would begin one.
    if (!parts.authority && path.starts_with("//")) {
        text += "/.";
    }
    text += path;
    if (parts.query) {
        text.append("?").append(*parts.query);
    }
    if (parts.fragment) {
        text.append("#").append(*parts.fragment);
    }
    return text;
}

std::string_view lastSegment(std::string_view path) {
    if (path.ends_with('/')) {
        path.remove_suffix(1);
    }
    const auto slash = path.rfind('/');
    return slash == npos ? path : path.substr(slash + 1);
}

std::string decodedIfPossible(std::string_view text) {
    auto decoded = percentDecode(text);
    return decoded ? *std::move(decoded) : std::string(text);
}

} // namespace

std::optional<URL> URL::parse(std::string_view text) {
    if (!boost::urls::parse_uri(text).has_value() || !isUsable(split(text))) {
        return std::nullopt;
    }
    return URL(std::string(text));
}

URL URL::file(const std::filesystem::path& path) {
    std::error_code ignored;
    auto absolute = std::filesystem::absolute(path, ignored);
    if (absolute.is_relative()) {
        absolute = "/" / absolute;
    }
    return URL("file://" + percentEncodeBytes(absolute.native(), AllowedCharacters::path));
}

std::optional<URL> URL::resolving(std::string_view reference) const {
    const auto base = split(text_);
    auto target = split(reference);
    std::string path;
    if (target.scheme || target.authority) {
        path = withoutDotSegments(target.path);
    } else {
        target.authority = base.authority;
        if (target.path.empty()) {
            path = base.path;
            target.query = target.query ? target.query : base.query;
        } else if (target.path.starts_with('/')) {
            path = withoutDotSegments(target.path);
        } else {
            path = withoutDotSegments(mergedPath(base, target.path));
        }
    }
    target.scheme = target.scheme ? target.scheme : base.scheme;
    return parse(joined(target, path));
}

URL URL::appendingPathComponent(std::string_view component) const {
    const auto parts = split(text_);
    std::string path(parts.path);
    if (!path.ends_with('/')) {
        path += '/';
    }
    if (component == "." || component == "..") {
        for (std::size_t index = 0; index < component.size(); ++index) {
            path += "%2E";
        }
    } else {
        path += percentEncodeBytes(component, AllowedCharacters::pathSegment);
    }
    return URL(joined(parts, path));
}

std::string URL::scheme() const {
    return lowerCase(*split(text_).scheme);
}

std::optional<std::string> URL::userInfo() const {
    return copyOf(splitAuthority(split(text_).authority.value_or("")).userInfo);
}

bool URL::hasAuthority() const {
    return split(text_).authority.has_value();
}

std::string URL::host() const {
    return lowerCase(splitAuthority(split(text_).authority.value_or("")).host);
}

std::optional<std::uint16_t> URL::port() const {
    return portNumber(splitAuthority(split(text_).authority.value_or("")).port);
}

std::string URL::path() const {
    return decodedIfPossible(split(text_).path);
}

std::string URL::percentEncodedPath() const {
    return std::string(split(text_).path);
}

std::optional<std::string> URL::query() const {
    return copyOf(split(text_).query);
}

std::optional<std::string> URL::fragment() const {
    return copyOf(split(text_).fragment);
}

std::string URL::lastPathComponent() const {
    return decodedIfPossible(lastSegment(split(text_).path));
}

std::string URL::pathExtension() const {
    const auto name = lastPathComponent();
    const auto dot = name.rfind('.');
    return dot == npos || dot == 0 ? std::string() : name.substr(dot + 1);
}

bool URL::isFile() const {
    return scheme() == "file";
}

std::filesystem::path URL::filePath() const {
    const auto machine = host();
    if (!isFile() || (!machine.empty() && machine != "localhost")) {
        return {};
    }
    auto decoded = percentDecodeBytes(split(text_).path);
    if (!decoded || decoded->find('\0') != std::string::npos) {
        return {};
    }
    return *std::move(decoded);
}

} // namespace zelto
