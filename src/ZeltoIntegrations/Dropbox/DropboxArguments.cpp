#include <ZeltoIntegrations/Dropbox/DropboxArguments.h>

#include <Platform/FileNames.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <cstdint>
#include <utility>

namespace zelto {

namespace {

constexpr std::string_view orOperator = " OR ";

void appendEscape(std::string& text, char32_t unit) {
    constexpr std::string_view digits = "0123456789abcdef";
    text += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        text += digits[unit >> shift & 0xF];
    }
}

void appendEscapes(std::string& text, char32_t codePoint) {
    constexpr char32_t firstSupplementary = 0x10000;
    if (codePoint < firstSupplementary) {
        return appendEscape(text, codePoint);
    }
    const auto offset = codePoint - firstSupplementary;
    appendEscape(text, 0xD800 + (offset >> 10));
    appendEscape(text, 0xDC00 + (offset & 0x3FF));
}

bool isSearched(std::string_view character) {
    return isLetterOrDigit(character) || character == " " || character == "." || character == "-" ||
           character == "_";
}

bool isControl(char each) {
    constexpr char deleteCharacter = 0x7F;
    return (each >= 0 && each < ' ') || each == deleteCharacter;
}

std::string_view prefixCodePoints(std::string_view text, std::size_t count) {
    std::size_t length = 0;
    for (; count > 0 && length < text.size(); --count) {
        length += firstCodePoint(text.substr(length)).length;
    }
    return text.substr(0, length);
}

} // namespace

std::string asciiEscaped(std::string_view json) {
    constexpr char32_t firstEscaped = 0x7F;
    std::string escaped;
    while (!json.empty()) {
        const auto next = firstCodePoint(json);
        if (next.value < firstEscaped) {
            escaped += static_cast<char>(next.value);
        } else {
            appendEscapes(escaped, next.value);
        }
        json.remove_prefix(next.length);
    }
    return escaped;
}

std::vector<std::string> dropboxQueries(const std::vector<std::string>& fileNames) {
    std::vector<std::string> queries;
    std::size_t length = 0; // of the last one, in code points
    for (const auto& fileName : fileNames) {
        const auto whole = dropboxSearchName(fileName);
        const auto name = prefixCodePoints(whole, maximumDropboxQuery);
        if (isBlank(name)) {
            continue;
        }
        const auto own = codePointCount(name);
        if (queries.empty() || length + orOperator.size() + own > maximumDropboxQuery) {
            queries.emplace_back(name);
            length = own;
        } else {
            queries.back().append(orOperator).append(name);
            length += orOperator.size() + own;
        }
    }
    return queries;
}

std::string dropboxSearchName(std::string_view fileName) {
    std::string filtered;
    for (const auto character : characters(fileName)) {
        filtered += isSearched(character) && isValidUTF8(character) ? character : " ";
    }
    return filtered;
}

std::string dropboxFileName(std::string_view name) {
    constexpr std::size_t maximumBytes = 255;
    std::string accepted;
    for (const char each : name) {
        accepted += each == '/' || each == '\\' || isControl(each) ? '_' : each;
    }
    auto stored = fileNameCutTo(trimmed(accepted), maximumBytes);
    return stored.find_first_not_of('.') == std::string::npos ? "unnamed" : stored;
}

std::string dropboxFolderPath(std::string_view path) {
    const auto end = path.find_last_not_of('/');
    return std::string(path.substr(0, end == path.npos ? 0 : end + 1));
}

} // namespace zelto
