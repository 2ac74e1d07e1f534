#include <Platform/URLGrammarInternal.h>

#include <Platform/ASCII.h>
#include <Platform/Numbers.h>

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <string>

namespace zelto {

// Boost.URL is not used: its first release (1.81) accepts "x://a@b@c/", "x://[::1]2" and "x://1.2.3.4a", each
// with a host that other parsers do not see, and checks of hosts rely on this grammar.

namespace {

constexpr auto npos = std::string_view::npos;

enum CharacterClass : unsigned char {
    none = 0,
    plain = 1, // unreserved or sub-delims
    colon = 2,
    at = 4,
    slash = 8,
    questionMark = 16,
};

constexpr auto classes = [] {
    std::array<unsigned char, 256> table{};
    for (const char each : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                                            "-._~!$&'()*+,;=")) {
        table[static_cast<unsigned char>(each)] = plain;
    }
    table[':'] = colon;
    table['@'] = at;
    table['/'] = slash;
    table['?'] = questionMark;
    return table;
}();

constexpr unsigned char userInfoClasses = plain | colon;
constexpr unsigned char nameClasses = plain;
constexpr unsigned char pathClasses = plain | colon | at | slash;
constexpr unsigned char queryClasses = pathClasses | questionMark;

// Whether the text consists of characters of these classes and complete escapes only.
bool consistsOf(std::string_view text, unsigned char allowed) {
    for (std::size_t index = 0; index < text.size(); ++index) {
        if ((classes[static_cast<unsigned char>(text[index])] & allowed) != 0) {
            continue;
        }
        if (text[index] != '%' || text.size() - index < 3 || hexDigitValue(text[index + 1]) < 0 ||
            hexDigitValue(text[index + 2]) < 0) {
            return false;
        }
        index += 2;
    }
    return true;
}

bool isSchemeName(std::string_view text) {
    return !text.empty() && isASCIILetter(text.front()) && std::ranges::all_of(text, [](char each) {
        return isASCIIAlphanumeric(each) || each == '+' || each == '-' || each == '.';
    });
}

bool isWeb(std::string_view scheme) {
    return equalIgnoringASCIICase(scheme, "https") || equalIgnoringASCIICase(scheme, "http");
}

bool isIPv6Address(std::string_view text) {
    in6_addr address{};
    // No NUL, at which inet_pton would stop reading.
    return text.find_first_not_of("0123456789ABCDEFabcdef:.") == npos && text.size() < INET6_ADDRSTRLEN &&
           inet_pton(AF_INET6, std::string(text).c_str(), &address) == 1;
}

// Addresses of future versions ("[v1.x]") are refused: no client could use one.
bool isHostAndPort(std::string_view text, bool web) {
    if (text.starts_with('[')) {
        const auto bracket = text.find(']');
        if (bracket == npos || !isIPv6Address(text.substr(1, bracket - 1))) {
            return false;
        }
        text.remove_prefix(bracket + 1);
    } else {
        const auto name = text.substr(0, text.find(':'));
        if (!consistsOf(name, nameClasses) || (web && (name.empty() || name.find('%') != npos))) {
            return false;
        }
        text.remove_prefix(name.size());
    }
    return text.empty() || (text.front() == ':' && (text.size() == 1 || portNumberOf(text.substr(1))));
}

bool isAuthority(std::string_view text, bool web) {
    if (const auto end = text.find('@'); end != npos) {
        return consistsOf(text.substr(0, end), userInfoClasses) && isHostAndPort(text.substr(end + 1), web);
    }
    return isHostAndPort(text, web);
}

} // namespace

URLSplit splitURL(std::string_view text) {
    URLSplit parts;
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

URLAuthority splitURLAuthority(std::string_view text) {
    URLAuthority parts;
    if (const auto end = text.find('@'); end != npos) {
        parts.userInfo = text.substr(0, end);
        text.remove_prefix(end + 1);
    }
    if (text.starts_with('[')) {
        const auto bracket = std::min(text.find(']'), text.size() - 1);
        parts.host = text.substr(1, bracket - 1);
        text.remove_prefix(bracket + 1);
    } else {
        parts.host = text.substr(0, text.find(':'));
        text.remove_prefix(parts.host.size());
    }
    if (text.starts_with(':')) {
        parts.port = text.substr(1);
    }
    return parts;
}

std::optional<std::uint16_t> portNumberOf(std::string_view digits) {
    return numberIn<std::uint16_t>(digits);
}

bool isAbsoluteURL(std::string_view text) {
    const auto parts = splitURL(text);
    if (!parts.scheme) {
        return false;
    }
    const bool web = isWeb(*parts.scheme);
    if (parts.authority ? !isAuthority(*parts.authority, web) : web) {
        return false;
    }
    return consistsOf(parts.path, pathClasses) && consistsOf(parts.query.value_or(""), queryClasses) &&
           consistsOf(parts.fragment.value_or(""), queryClasses);
}

} // namespace zelto
