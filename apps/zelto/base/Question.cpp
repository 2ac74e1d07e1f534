#include "base/Question.h"

#include "base/Terminal.h"

#include <Platform/ASCII.h>

#include <cerrno>
#include <unistd.h>

namespace zelto::cli {

bool canAsk() {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

bool confirms(const std::string& question) {
    constexpr std::size_t maximumLine = 80;
    writeError(question + " [y/N] ");
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
    const auto given = toASCIILower(line);
    return given == "y" || given == "yes";
}

} // namespace zelto::cli
