#include "commandline/NextCommandLine.h"

#include "base/ShellText.h"
#include "commandline/InvocationCheck.h"

#include <ZeltoCommonLogger/LogMasking.h>

#include <algorithm>
#include <array>

namespace zelto::cli {

namespace {

// A value that begins with a dash may be taken for an option.
std::string withValue(std::string_view option, const std::string& value) {
    const bool looksLikeOption = value.starts_with('-') && value != "-";
    return " " + std::string(option) + (looksLikeOption ? "=" : " ") + shellWord(value);
}

bool has(const CommandSpec& command, std::string_view option) {
    return std::ranges::find(command.options, option, &OptionSpec::name) != command.options.end();
}

std::string secretFromInput(const CommandSpec& command, const OptionSpec& option) {
    const auto fromInput = std::string(option.name) + "-stdin";
    return " " + (has(command, fromInput) ? fromInput : std::string(option.name) + " -");
}

std::string textOf(const CommandSpec& command, const OptionSpec& option,
                   const std::vector<std::string>& values) {
    if (values.empty()) {
        return {};
    }
    if (option.value.empty()) {
        return " " + std::string(option.name);
    }
    if (option.kind == ValueKind::secret) {
        return secretFromInput(command, option);
    }
    std::string text;
    for (const auto& value : values) {
        text += withValue(option.name, value);
    }
    return text;
}

// In a value that is no secret as a whole: an address with a password, for one.
bool holdsSecret(const Invocation& typed) {
    const auto isShown = [&](std::string_view name) {
        return std::ranges::all_of(typed.values(name),
                                   [](const std::string& value) { return maskSecrets(value) == value; });
    };
    const auto isSafe = [&](const OptionSpec& option) {
        return option.kind == ValueKind::secret || isShown(option.name);
    };
    return !std::ranges::all_of(typed.command->arguments, isShown, &ArgumentSpec::name) ||
           !std::ranges::all_of(typed.command->options, isSafe) ||
           !std::ranges::all_of(globalOptions(), isSafe);
}

std::string repeated(const Invocation& typed, const NextCommand::Options& changes) {
    const auto& command = *typed.command;
    std::string line = "zelto " + std::string(command.name);
    std::string dashed; // arguments that would be taken for options
    for (const auto& argument : command.arguments) {
        const auto changed = changes.find(argument.name);
        for (const auto& value : changed == changes.end() ? typed.values(argument.name) : changed->second) {
            const bool looksLikeOption = value.starts_with('-') && value != "-";
            (looksLikeOption ? dashed : line) += " " + shellWord(value);
        }
    }
    const auto add = [&](const OptionSpec& option) {
        const auto changed = changes.find(option.name);
        const auto text =
            textOf(command, option, changed == changes.end() ? typed.values(option.name) : changed->second);
        // Of two ways to take a secret from standard input, one is enough.
        line += line.ends_with(text) ? "" : text;
    };
    std::ranges::for_each(command.options, add);
    std::ranges::for_each(globalOptions(), add);
    return line + (dashed.empty() ? "" : " --" + dashed);
}

// A command that is about no account.
bool standsAlone(std::string_view command) {
    return command.ends_with("--help") || command.starts_with("zelto sandbox");
}

// Where the accounts are that the command is about.
std::string withSurroundings(const std::string& command, const Invocation& typed) {
    constexpr std::array surroundings{"--data-dir", "--keychain", "--sandbox"};
    auto line = command;
    for (const auto* option : surroundings) {
        const auto value = typed.value(option);
        line += value && !command.contains(option) ? withValue(option, *value) : "";
    }
    return line;
}

} // namespace

std::string lineOf(const NextCommand& next, const Invocation& typed) {
    const auto help = helpCommand(typed.command);
    if (next.isHelp() || (next.changes() && !typed.command)) {
        return help;
    }
    if (!next.changes()) {
        return standsAlone(next.command()) ? next.command() : withSurroundings(next.command(), typed);
    }
    return holdsSecret(typed) ? help : repeated(typed, *next.changes());
}

} // namespace zelto::cli
