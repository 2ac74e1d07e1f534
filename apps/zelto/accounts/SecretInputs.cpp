#include "accounts/SecretInputs.h"

#include "commandline/CommandTable.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unistd.h>

namespace zelto::cli {

namespace {

std::optional<std::string> takenToken;

bool holdsSecret(std::string_view option) {
    return std::ranges::any_of(commands(), [&](const CommandSpec& command) {
        return std::ranges::any_of(command.options, [&](const OptionSpec& each) {
            return each.name == option && each.kind == ValueKind::secret;
        });
    });
}

void blank(char* text) {
    std::memset(text, 'x', std::strlen(text));
}

} // namespace

void blankSecretArguments(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        const auto equals = argument.find('=');
        if (!holdsSecret(argument.substr(0, equals))) {
            continue;
        }
        if (equals != std::string_view::npos) {
            blank(arguments[i] + equals + 1);
        } else if (i + 1 < count && std::string_view(arguments[i + 1]) != "-") {
            blank(arguments[++i]);
        }
    }
}

std::optional<std::string> takeVariable(const char* name) {
    char* const value = std::getenv(name);
    if (!value) {
        return std::nullopt;
    }
    std::string taken(value);
    blank(value);
    ::unsetenv(name);
    return taken;
}

void takeTokenOfEnvironment() {
    takenToken = takeVariable("ZELTO_TOKEN");
}

const std::optional<std::string>& tokenOfEnvironment() {
    return takenToken;
}

std::optional<std::string> secretOfStandardInput() {
    constexpr std::size_t limit = 64 * 1024;
    std::string text;
    std::array<char, 4096> piece;
    for (;;) {
        const auto count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        text.append(piece.data(), static_cast<std::size_t>(count));
        if (text.size() > limit) {
            return std::nullopt;
        }
    }
    while (text.ends_with('\n') || text.ends_with('\r')) {
        text.pop_back();
    }
    return text;
}

} // namespace zelto::cli
