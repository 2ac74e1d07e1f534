#include "commandline/CommandTable.h"
#include "commandline/Completions.h"
#include "commandline/KnownValues.h"

#include <Platform/Joined.h>

namespace zelto::cli {

namespace {

constexpr auto start = R"sh(# fish completions of zelto; made by `zelto completion fish`

function __zelto_accounts
    zelto accounts --quiet 2> /dev/null | string replace -r '  .*' ''
end

function __zelto_targets
    set -l words (commandline -opc)
    set -l account
    for index in (seq (count $words))
        switch $words[$index]
            case --to
                set account $words[(math $index + 1)]
            case '--to=*'
                set account (string replace -- --to= '' $words[$index])
        end
    end
    if test -n "$account"
        zelto targets $account --paths 2> /dev/null
    end
end

function __zelto_mails
    __fish_complete_suffix .eml
    __fish_complete_suffix .json
end

complete -c zelto -f
)sh";

std::string quoted(std::string_view text) {
    std::string result = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return result + "'";
}

// The end of a "complete" line: what is offered for a value.
std::string action(ValueKind kind, const std::vector<std::string_view>& choices) {
    const auto offered = joined(knownValues(kind, choices), " ");
    switch (kind) {
    case ValueKind::text:
        return choices.empty() ? " -x" : " -x -a " + quoted(offered);
    case ValueKind::file:
        return " -r -F";
    case ValueKind::directory:
        return " -x -a '(__fish_complete_directories)'";
    case ValueKind::secret:
        return " -x -a -";
    case ValueKind::command:
        return " -x -a '- (__fish_complete_command)'";
    case ValueKind::service:
    case ValueKind::contentType:
        return " -x -a " + quoted(offered);
    case ValueKind::account:
        return " -x -a '(__zelto_accounts)'";
    case ValueKind::accountOrService:
    case ValueKind::meetingAccountOrService:
        return " -x -a " + quoted(offered + " (__zelto_accounts)");
    case ValueKind::target:
        return " -x -a '(__zelto_targets)'";
    case ValueKind::mail:
        return " -x -a '- (__zelto_mails)'";
    }
    return {};
}

// The condition under which a command is the one on the line.
std::string condition(const CommandSpec& command) {
    const auto blank = command.name.find(' ');
    auto text = "__fish_seen_subcommand_from " + std::string(command.name.substr(0, blank));
    for (const auto& other : commands()) {
        if (other.name.starts_with(std::string(command.name) + " ")) {
            text += "; and not __fish_seen_subcommand_from " +
                    std::string(other.name.substr(command.name.size() + 1));
        }
    }
    if (blank != std::string_view::npos) {
        text += "; and __fish_seen_subcommand_from " + std::string(command.name.substr(blank + 1));
    }
    return text;
}

std::string line(const OptionSpec& option, const std::string& condition) {
    return "complete -c zelto" + (condition.empty() ? "" : " -n " + quoted(condition)) + " -l " +
           std::string(option.name.substr(2)) +
           (option.value.empty() ? "" : action(option.kind, option.choices)) + " -d " + quoted(option.help) +
           "\n";
}

std::string lines(const CommandSpec& command) {
    std::string text = "\n";
    const auto blank = command.name.find(' ');
    const auto* parent =
        blank == std::string_view::npos ? nullptr : findCommand(command.name.substr(0, blank));
    text += "complete -c zelto -n " + quoted(parent ? condition(*parent) : "__fish_use_subcommand") + " -a " +
            std::string(parent ? command.name.substr(blank + 1) : command.name) + " -d " +
            quoted(command.summary) + "\n";
    for (const auto& option : command.options) {
        text += line(option, condition(command));
    }
    for (const auto& argument : command.arguments) {
        text += "complete -c zelto -n " + quoted(condition(command)) +
                action(argument.kind, argument.choices) + " -d " + quoted(argument.name) + "\n";
    }
    return text;
}

} // namespace

std::string fishCompletions() {
    std::string text = start;
    for (const auto& option : globalOptions()) {
        text += line(option, "");
    }
    for (const auto& command : commands()) {
        text += lines(command);
    }
    return text;
}

} // namespace zelto::cli
