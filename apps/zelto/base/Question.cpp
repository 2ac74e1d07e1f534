#include "base/Question.h"

#include "base/Terminal.h"

#include <Platform/ASCII.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <cerrno>
#include <unistd.h>

namespace zelto::cli {

bool canAsk() {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

std::string typedText(const std::string& question) {
    constexpr std::size_t maximumLine = 1000;
    writeError(question + " ");
    std::string line;
    for (char c = 0; line.size() < maximumLine;) {
        const auto count = ::read(STDIN_FILENO, &c, 1);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0 || c == '\n') {
            break;
        }
        line += c;
    }
    return std::string(trimmed(repairedUTF8(line)));
}

bool confirms(const std::string& question) {
    const auto given = toASCIILower(typedText(question + " [y/N]"));
    return given == "y" || given == "yes";
}

} // namespace zelto::cli
