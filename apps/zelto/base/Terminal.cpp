#include "base/Terminal.h"

#include <Platform/Text.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace zelto::cli {

namespace {

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const auto written = ::write(descriptor, text.data(), text.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

struct Codepoint {
    std::uint32_t value = 0;
    std::size_t size = 1;
};

// The code point that the text begins with, where it may be one to escape: of one to three bytes.
Codepoint firstCodepoint(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i]));
    };
    const auto lead = byte(0);
    if (lead >= 0xC0 && lead < 0xE0 && text.size() > 1) {
        return {(lead & 0x1F) << 6 | (byte(1) & 0x3F), 2};
    }
    if (lead >= 0xE0 && lead < 0xF0 && text.size() > 2) {
        return {(lead & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F), 3};
    }
    return {lead < 0x80 ? lead : 0, 1};
}

bool controlsTerminals(std::uint32_t codepoint) {
    const auto within = [codepoint](std::uint32_t first, std::uint32_t last) {
        return codepoint >= first && codepoint <= last;
    };
    constexpr std::uint32_t arabicLetterMark = 0x61C;
    return within(0x7F, 0x9F) || codepoint == arabicLetterMark || within(0x200E, 0x200F) ||
           within(0x2028, 0x202E) || within(0x2066, 0x2069);
}

std::string jsonEscape(std::uint32_t codepoint) {
    constexpr auto digits = "0123456789abcdef";
    std::string text = "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        text += digits[codepoint >> shift & 0xF];
    }
    return text;
}

} // namespace

Terminal Terminal::ofThisProcess() {
    Terminal terminal;
    terminal.outputIsTerminal = ::isatty(STDOUT_FILENO) == 1;
    const char* const noColour = std::getenv("NO_COLOR"); // https://no-color.org
    const char* const kind = std::getenv("TERM");
    terminal.showsBar = ::isatty(STDERR_FILENO) == 1 && !(kind && std::string_view(kind) == "dumb");
    terminal.usesColour = terminal.showsBar && !(noColour && *noColour);
    return terminal;
}

std::string Terminal::shown(std::string_view text) const {
    return outputIsTerminal ? escapeControlCharacters(text) : std::string(text);
}

std::string Terminal::shownLines(std::string_view text) const {
    return outputIsTerminal ? escapedLines(text) : std::string(text);
}

std::string escapedLines(std::string_view text) {
    std::string lines;
    for (;;) {
        const auto end = text.find_first_of("\n\t");
        auto part = text.substr(0, end);
        const bool hasTwoBytes = end != std::string_view::npos && text[end] == '\n' && part.ends_with('\r');
        part.remove_suffix(hasTwoBytes ? 1 : 0);
        lines += escapeControlCharacters(part);
        if (end == std::string_view::npos) {
            return lines;
        }
        lines += text.substr(part.size(), end + 1 - part.size());
        text.remove_prefix(end + 1);
    }
}

std::string terminalSafeJSON(std::string_view json) {
    std::string safe;
    safe.reserve(json.size());
    while (!json.empty()) {
        const auto first = firstCodepoint(json);
        if (controlsTerminals(first.value)) {
            safe += jsonEscape(first.value);
        } else {
            safe += json.substr(0, first.size);
        }
        json.remove_prefix(first.size);
    }
    return safe;
}

void reserveStandardDescriptors() {
    // Opened for the other direction, so that using one still fails.
    constexpr std::array modes{O_WRONLY, O_RDONLY, O_RDONLY};
    for (int descriptor = 0; descriptor < 3; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) < 0) {
            // The lowest free number is this one.
            (void)::open("/dev/null", modes[static_cast<std::size_t>(descriptor)]);
        }
    }
}

bool writeOutput(std::string_view text) {
    return writeAll(STDOUT_FILENO, text);
}

void writeError(std::string_view text) {
    // There is no other output that a failure could be reported on.
    (void)writeAll(STDERR_FILENO, text);
}

} // namespace zelto::cli
