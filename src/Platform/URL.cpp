#include <Platform/URL.h>

#include <Platform/ASCII.h>
#include <Platform/PercentEncoding.h>
#include <Platform/URLGrammarInternal.h>

#include <algorithm>

namespace zelto {

namespace {

constexpr auto npos = std::string_view::npos;

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

std::string mergedPath(const URLSplit& base, std::string_view reference) {
    if (base.authority && base.path.empty()) {
        return "/" + std::string(reference);
    }
    const auto slash = base.path.rfind('/');
    return std::string(base.path.substr(0, slash == npos ? 0 : slash + 1)) + std::string(reference);
}

std::string joined(const URLSplit& parts, std::string_view path) {
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
    return isAbsoluteURL(text) ? std::optional(URL(std::string(text))) : std::nullopt;
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
    const auto base = splitURL(text_);
    auto target = splitURL(reference);
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
    const auto parts = splitURL(text_);
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
    return toASCIILower(*splitURL(text_).scheme);
}

std::optional<std::string> URL::userInfo() const {
    return copyOf(splitURLAuthority(splitURL(text_).authority.value_or("")).userInfo);
}

bool URL::hasAuthority() const {
    return splitURL(text_).authority.has_value();
}

std::string URL::host() const {
    return toASCIILower(splitURLAuthority(splitURL(text_).authority.value_or("")).host);
}

std::optional<std::uint16_t> URL::port() const {
    return portNumberOf(splitURLAuthority(splitURL(text_).authority.value_or("")).port);
}

std::string URL::path() const {
    return decodedIfPossible(splitURL(text_).path);
}

std::string URL::percentEncodedPath() const {
    return std::string(splitURL(text_).path);
}

std::optional<std::string> URL::query() const {
    return copyOf(splitURL(text_).query);
}

std::optional<std::string> URL::fragment() const {
    return copyOf(splitURL(text_).fragment);
}

std::string URL::lastPathComponent() const {
    return decodedIfPossible(lastSegment(splitURL(text_).path));
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
    auto decoded = percentDecodeBytes(splitURL(text_).path).value_or("");
    if (decoded.contains('\0')) {
        return {};
    }
    return decoded;
}

} // namespace zelto
