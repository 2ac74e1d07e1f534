#include "accounts/SecretInputs.h"

#include "base/Terminal.h"
#include "commandline/CommandTable.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unistd.h>

namespace zelto::cli {

namespace {

constexpr std::size_t limit = 64 * 1024;

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

Result<std::string, InputEnd> SecretInput::next(std::string_view what) {
    if (!reading_) {
        reading_.emplace();
    }
    if (reading_->input.isTyped()) {
        return nextTyped(what);
    }
    if (!left_) {
        auto all = reading_->input.all(limit);
        if (!all) {
            return all;
        }
        left_ = all->substr(0, all->find_last_not_of("\r\n") + 1);
    }
    auto line = left_->substr(0, left_->find('\n'));
    left_->erase(0, line.size() + 1);
    return line;
}

Result<std::string, InputEnd> SecretInput::nextTyped(std::string_view what) {
    writeError(std::string(what) + " (it is not shown): ");
    auto line = reading_->input.line(limit);
    writeError("\n");
    return !line && line.error() == InputEnd::ended ? std::string() : line;
}

} // namespace zelto::cli
