#include <ZeltoHost/Platform/EmailValidator.h>

#include <Platform/ASCII.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <string>

#include <arpa/inet.h>

namespace zelto {

namespace {

constexpr std::size_t maximumAddressLength = 254;
constexpr std::size_t maximumLocalPartLength = 64;
constexpr std::size_t maximumLabelLength = 63;

// A label outside ASCII is sent as "xn--" and at least one octet per character.
constexpr std::size_t maximumInternationalLabelLength = 59;

bool isAtomText(char octet) {
    return !isASCII(octet) || isASCIIAlphanumeric(octet) ||
           std::string_view("!#$%&'*+-/=?^_`{|}~").find(octet) != std::string_view::npos;
}

bool isPrintable(char octet) {
    return !isASCII(octet) || (octet >= ' ' && octet <= '~');
}

// Well-formed, and without white space, control characters and marks of writing direction outside ASCII.
bool isSoundText(std::string_view text) {
    if (!isValidUTF8(text) || escapeControlCharacters(text) != text) {
        return false;
    }
    while (!text.empty()) {
        const auto length = firstCodePoint(text).length;
        if (length > 1 && isBlank(text.substr(0, length))) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

// Whether the function holds for each part. Most callers allow no empty part, so empty ones are passed too.
template <class F> bool allParts(std::string_view text, F&& holds) {
    for (;;) {
        const auto dot = text.find('.');
        if (!holds(text.substr(0, dot))) {
            return false;
        }
        if (dot == std::string_view::npos) {
            return true;
        }
        text.remove_prefix(dot + 1);
    }
}

bool isDotAtom(std::string_view text) {
    return allParts(
        text, [](std::string_view atom) { return !atom.empty() && std::ranges::all_of(atom, isAtomText); });
}

bool isQuotedContent(std::string_view text) {
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == '"') {
            return false;
        }
        if (text[index] == '\\' && (++index == text.size() || !isASCII(text[index]))) {
            return false;
        }
        if (!isPrintable(text[index])) {
            return false;
        }
    }
    return true;
}

bool isLocalPart(std::string_view text) {
    if (text.empty() || text.size() > maximumLocalPartLength) {
        return false;
    }
    if (text.front() != '"') {
        return isDotAtom(text);
    }
    return text.size() > 1 && text.back() == '"' && isQuotedContent(text.substr(1, text.size() - 2));
}

bool isLabel(std::string_view label) {
    if (label.empty() || label.front() == '-' || label.back() == '-') {
        return false;
    }
    const bool isInternational = !std::ranges::all_of(label, isASCII);
    const auto characters = static_cast<std::size_t>(
        std::ranges::count_if(label, [](char octet) { return (octet & 0xC0) != 0x80; }));
    return characters <= (isInternational ? maximumInternationalLabelLength : maximumLabelLength) &&
           std::ranges::all_of(label, [](char octet) {
               return !isASCII(octet) || isASCIIAlphanumeric(octet) || octet == '-';
           });
}

bool isLiteral(std::string_view content) {
    constexpr std::string_view tag = "IPv6:";
    unsigned char address[sizeof(in6_addr)];
    if (content.starts_with(tag)) {
        return ::inet_pton(AF_INET6, std::string(content.substr(tag.size())).c_str(), address) == 1;
    }
    return ::inet_pton(AF_INET, std::string(content).c_str(), address) == 1;
}

bool isDomain(std::string_view text) {
    if (text.starts_with('[') && text.ends_with(']')) {
        return isLiteral(text.substr(1, text.size() - 2));
    }
    const auto last = text.substr(text.rfind('.') + 1);
    return allParts(text, isLabel) && !std::ranges::all_of(last, isASCIIDigit);
}

} // namespace

bool isEmailAddress(std::string_view text) {
    if (text.size() > maximumAddressLength || !isSoundText(text)) {
        return false;
    }
    // The last one, since a quoted local part may contain others.
    const auto at = text.rfind('@');
    return at != std::string_view::npos && isLocalPart(text.substr(0, at)) && isDomain(text.substr(at + 1));
}

} // namespace zelto
