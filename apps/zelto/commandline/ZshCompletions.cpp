#include "base/ShellText.h"
#include "commandline/CommandTable.h"
#include "commandline/Completions.h"
#include "commandline/KnownValues.h"

#include <Platform/Joined.h>

namespace zelto::cli {

namespace {

constexpr auto start = R"sh(#compdef zelto
# zsh completions of zelto; made by `zelto completion zsh`

_zelto_accounts() {
    local -a identifiers
    identifiers=(${(f)"$(zelto accounts --quiet 2> /dev/null)"})
    identifiers=(${identifiers%%  *})
    compadd -a identifiers
}

_zelto_targets() {
    local -a paths
    if [[ -n ${opt_args[--to]} ]]; then
        paths=(${(f)"$(zelto targets ${(Q)opt_args[--to]} --paths 2> /dev/null)"})
        compadd -a paths
    fi
}

)sh";

constexpr auto end = R"sh(
if [[ $zsh_eval_context[-1] == loadautofunc ]]; then
    _zelto "$@"
else
    compdef _zelto zelto
fi
)sh";

// Text for a "[...]" or a part between ":" in what _arguments takes.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return result;
}

std::string action(ValueKind kind, const std::vector<std::string_view>& choices) {
    const auto offered = "(" + joined(knownValues(kind, choices), " ") + ")";
    switch (kind) {
    case ValueKind::text:
        return choices.empty() ? " " : offered;
    case ValueKind::secret:
        return "compadd -- -";
    case ValueKind::file:
        return "_files";
    case ValueKind::directory:
        return "_files -/";
    case ValueKind::command:
        return "_command_names -e";
    case ValueKind::service:
    case ValueKind::contentType:
        return offered;
    case ValueKind::account:
        return "_zelto_accounts";
    case ValueKind::accountOrService:
    case ValueKind::meetingAccountOrService:
        return "{compadd " + joined(knownValues(kind, choices), " ") + "; _zelto_accounts}";
    case ValueKind::target:
        return "_zelto_targets";
    case ValueKind::mail:
        return R"sh(_files -g "*.(eml|json)")sh";
    }
    return {};
}

std::string argumentsWord(const OptionSpec& option) {
    auto text = (option.repeatable ? "*" : "") + std::string(option.name) +
                (option.value.empty() ? "" : "=") + "[" + escaped(option.help) + "]";
    if (!option.value.empty()) {
        text += ":" + escaped(option.value) + ":" + action(option.kind, option.choices);
    }
    return shellQuoted(text);
}

std::string specifications(std::span<const OptionSpec> options) {
    std::string lines;
    for (const auto& option : options) {
        lines += " \\\n            " + argumentsWord(option);
    }
    return lines;
}

// The name of the function that completes a command: "accounts remove" has one of its own.
std::string functionOf(const CommandSpec& command) {
    std::string name(command.name);
    for (char& c : name) {
        c = c == ' ' ? '_' : c;
    }
    return "_zelto_command_" + name;
}

std::string describedCommands(std::string_view parent) {
    std::string list;
    for (const auto& command : commands()) {
        if (!command.name.starts_with(parent)) {
            continue;
        }
        const auto word = command.name.substr(parent.size());
        if (!word.empty() && word.find(' ') == std::string_view::npos) {
            list += " " + shellQuoted(escaped(word) + ":" + std::string(command.summary));
        }
    }
    return list;
}

// Completes one of the commands, then calls its function.
std::string choice(std::string_view parent, const std::string& options) {
    std::string cases;
    for (const auto& command : commands()) {
        if (command.name.starts_with(parent) &&
            command.name.find(' ', parent.size()) == std::string_view::npos) {
            cases += "        " + std::string(command.name.substr(parent.size())) + ") " +
                     functionOf(command) + " ;;\n";
        }
    }
    return "    local context state state_descr line\n    typeset -A opt_args\n    _arguments -C" + options +
           " \\\n            '1: :->command' '*:: :->arguments'\n    case $state in\n    command)\n"
           "        local -a names\n        names=(" +
           describedCommands(parent) +
           ")\n        _describe command names\n        ;;\n    arguments)\n        case $line[1] in\n" +
           cases + "        esac\n        ;;\n    esac\n";
}

std::string function(const CommandSpec& command) {
    const auto prefix = std::string(command.name) + " ";
    const auto options = specifications(command.options) + specifications(globalOptions());
    auto text = functionOf(command) + "() {\n";
    if (!describedCommands(prefix).empty()) {
        return text + choice(prefix, options) + "}\n\n";
    }
    text += "    _arguments" + options;
    int place = 1;
    for (const auto& argument : command.arguments) {
        const auto which = argument.repeatable ? "*" : std::to_string(place++);
        text += " \\\n            " +
                shellQuoted(which + (argument.isOptional ? "::" : ":") + escaped(argument.name) + ":" +
                            action(argument.kind, argument.choices));
    }
    return text + "\n}\n\n";
}

} // namespace

std::string zshCompletions() {
    std::string text = start;
    for (const auto& command : commands()) {
        text += function(command);
    }
    return text + "_zelto() {\n" + choice("", specifications(globalOptions())) + "}\n" + end;
}

} // namespace zelto::cli
