#include <Platform/FileNames.h>

#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <array>

namespace zelto {

namespace {

constexpr auto npos = std::string_view::npos;
constexpr std::size_t maximumExtensionLength = 32;
constexpr std::size_t maximumNameLength = 255; // bytes, of file systems

// The extension with its "."; empty if the name has none.
std::string_view extensionOf(std::string_view name) {
    const auto dot = name.rfind('.');
    return dot == npos || dot == 0 ? std::string_view() : name.substr(dot);
}

struct Range {
    char32_t first;
    char32_t last;
};

// Control characters, marks of direction, and invisible characters. The joiners of emoji and of Indic and
// Arabic script (U+200C, U+200D) stay.
constexpr std::array removedRanges{Range{0x00, 0x1F},     Range{0x7F, 0x9F},     Range{0xAD, 0xAD},
                                   Range{0x61C, 0x61C},   Range{0x180E, 0x180E}, Range{0x200B, 0x200B},
                                   Range{0x200E, 0x200F}, Range{0x2028, 0x202E}, Range{0x2060, 0x206F},
                                   Range{0xFEFF, 0xFEFF}, Range{0xFFF9, 0xFFFB}, Range{0xE0001, 0xE0001}};

bool isRemoved(char32_t codePoint) {
    return std::ranges::any_of(removedRanges,
                               [&](Range each) { return codePoint >= each.first && codePoint <= each.last; });
}

std::string withPlainCharactersOnly(std::string_view name) {
    const auto repaired = repairedUTF8(name);
    std::string_view remaining = repaired;
    std::string result;
    while (!remaining.empty()) {
        const auto [codePoint, length] = firstCodePoint(remaining);
        if (codePoint < 0x80 && std::string_view("<>:\"|?*").find(static_cast<char>(codePoint)) != npos) {
            result += '_';
        } else if (!isRemoved(codePoint)) {
            result += remaining.substr(0, length);
        }
        remaining.remove_prefix(length);
    }
    return result;
}

std::string_view withoutDotsAndBlanksAtTheEnds(std::string_view name) {
    for (;;) {
        const auto before = name.size();
        name = trimmed(name);
        name.remove_prefix(std::min(name.find_first_not_of('.'), name.size()));
        name.remove_suffix(name.size() - (name.find_last_not_of('.') + 1));
        if (name.size() == before) {
            return name;
        }
    }
}

bool isReservedByWindows(std::string_view name) {
    const auto stem = foldedCase(trimmed(name.substr(0, name.find('.'))));
    constexpr std::array devices{"con", "prn", "aux", "nul", "conin$", "conout$", "clock$"};
    if (std::ranges::find(devices, stem) != devices.end()) {
        return true;
    }
    const std::string_view all = stem;
    if (!all.starts_with("com") && !all.starts_with("lpt")) {
        return false;
    }
    constexpr std::array<std::string_view, 13> digits{"0", "1", "2", "3",      "4",      "5",     "6",
                                                      "7", "8", "9", "\u00B9", "\u00B2", "\u00B3"};
    return std::ranges::find(digits, all.substr(3)) != digits.end();
}

} // namespace

std::string fileNameCutTo(std::string_view name, std::size_t bytes) {
    if (name.size() <= bytes) {
        return std::string(name);
    }
    const auto extension = extensionOf(name);
    if (extension.size() <= maximumExtensionLength && extension.size() < bytes) {
        const auto stem = name.substr(0, name.size() - extension.size());
        if (const auto kept = prefixBytes(stem, bytes - extension.size()); !kept.empty()) {
            return std::string(kept) + std::string(extension);
        }
    }
    return std::string(prefixBytes(name, bytes));
}

std::string cleanedFileName(std::string_view name, std::string_view fallback) {
    name = name.substr(name.find_last_of("/\\") + 1);
    const auto plain = withPlainCharactersOnly(name);
    std::string cleaned(withoutDotsAndBlanksAtTheEnds(plain));
    if (cleaned.starts_with('-')) {
        cleaned.front() = '_';
    }
    if (isReservedByWindows(cleaned)) {
        cleaned.insert(0, 1, '_');
    }
    const auto cut = fileNameCutTo(cleaned, cleanedFileNameLimit);
    const auto shown = withoutDotsAndBlanksAtTheEnds(cut);
    return std::string(shown.empty() ? fallback : shown);
}

std::string numberedFileName(std::string_view name, std::size_t number) {
    const auto suffix = " (" + std::to_string(number) + ")";
    auto numbered = fileNameCutTo(name, maximumNameLength - suffix.size());
    return numbered.insert(numbered.size() - extensionOf(numbered).size(), suffix);
}

} // namespace zelto
