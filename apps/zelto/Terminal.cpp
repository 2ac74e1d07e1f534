#include "Terminal.h"

#include <Platform/Text.h>

#include <cerrno>
#include <cstdlib>
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

} // namespace

Terminal Terminal::ofThisProcess() {
    Terminal terminal;
    terminal.outputIsTerminal = ::isatty(STDOUT_FILENO) == 1;
    terminal.errorIsTerminal = ::isatty(STDERR_FILENO) == 1;
    const char* const noColour = std::getenv("NO_COLOR"); // https://no-color.org
    const char* const kind = std::getenv("TERM");
    terminal.usesColour =
        terminal.errorIsTerminal && !(noColour && *noColour) && !(kind && std::string_view(kind) == "dumb");
    return terminal;
}

std::string Terminal::shown(std::string_view text) const {
    return outputIsTerminal ? escapeControlCharacters(text) : std::string(text);
}

std::string Terminal::shownLines(std::string_view text) const {
    if (!outputIsTerminal) {
        return std::string(text);
    }
    std::string lines;
    for (std::size_t start = 0; start < text.size();) {
        const auto end = text.find_first_of("\n\t", start);
        lines += escapeControlCharacters(text.substr(start, end - start));
        if (end == std::string_view::npos) {
            break;
        }
        lines += text[end];
        start = end + 1;
    }
    return lines;
}

bool writeOutput(std::string_view text) {
    return writeAll(STDOUT_FILENO, text);
}

void writeError(std::string_view text) {
    // There is nowhere left to tell of a failure.
    (void)writeAll(STDERR_FILENO, text);
}

} // namespace zelto::cli
