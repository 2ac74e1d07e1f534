#include "base/ShellText.h"
#include "commandline/CommandTable.h"
#include "commandline/Completions.h"
#include "commandline/KnownValues.h"

#include <Platform/Joined.h>

#include <map>
#include <ranges>

namespace zelto::cli {

namespace {

// Candidates are compared one by one: the names of accounts are foreign text, and `compgen -W` would run what
// is in them.
constexpr auto start = R"sh(# bash completions of zelto; made by `zelto completion bash`

_zelto_offer() {
    local candidate
    for candidate in "$@"; do
        if [[ $candidate == "$current"* ]]; then
            COMPREPLY+=("$(printf %q "$candidate")")
        fi
    done
}

_zelto_accounts() {
    local -a identifiers
    readarray -t identifiers < <(zelto accounts --quiet 2> /dev/null)
    _zelto_offer "${identifiers[@]%%  *}"
}

# The targets of the account that the line names by --to.
_zelto_targets() {
    local index account
    local -a paths
    for ((index = 1; index < COMP_CWORD; ++index)); do
        if [[ ${COMP_WORDS[index]} == --to ]]; then
            account=${COMP_WORDS[index + 1]}
            [[ $account == '=' ]] && account=${COMP_WORDS[index + 2]}
        fi
    done
    if [[ $account ]]; then
        readarray -t paths < <(zelto targets "$account" --paths 2> /dev/null)
        _zelto_offer "${paths[@]}"
    fi
}

# _zelto_files KIND: the files, directories or mails that begin with what is typed.
_zelto_files() {
    local path
    compopt -o filenames 2> /dev/null
    while IFS= read -r path; do
        if [[ $1 == file || -d $path || ($1 == mail && ($path == *.eml || $path == *.json)) ]]; then
            COMPREPLY+=("$path")
        fi
    done < <(compgen -f -- "$current")
}

)sh";

constexpr auto end = R"sh(
_zelto() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    # "--to=bear" comes as three words.
    if [[ $current == '=' ]]; then
        current=
    elif [[ $previous == '=' ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    if _zelto_value "$previous"; then
        return
    fi

    local command= word index
    for ((index = 1; index < COMP_CWORD; ++index)); do
        word=${COMP_WORDS[index]}
        if [[ $word == -?* ]]; then
            if _zelto_takes_value "$word"; then
                ((++index))
                [[ ${COMP_WORDS[index]} == '=' ]] && ((++index))
            fi
        elif _zelto_is_command "${command:+$command }$word"; then
            command+=${command:+ }$word
        fi
    done
    if [[ $current == -* ]]; then
        _zelto_options "$command"
    fi
    if [[ $current != -?* ]]; then
        _zelto_arguments "$command"
    fi
}

complete -F _zelto zelto
)sh";

std::string action(ValueKind kind, const std::vector<std::string_view>& choices) {
    const auto offered = "_zelto_offer " + joined(knownValues(kind, choices), " ");
    switch (kind) {
    case ValueKind::text:
        return choices.empty() ? ":" : offered;
    case ValueKind::file:
        return "_zelto_files file";
    case ValueKind::directory:
        return "_zelto_files directory";
    case ValueKind::command:
    case ValueKind::secret:
        return "_zelto_offer -";
    case ValueKind::service:
    case ValueKind::contentType:
        return offered;
    case ValueKind::account:
        return "_zelto_accounts";
    case ValueKind::accountOrService:
    case ValueKind::meetingAccountOrService:
        return offered + "; _zelto_accounts";
    case ValueKind::target:
        return "_zelto_targets";
    case ValueKind::mail:
        return "_zelto_offer -; _zelto_files mail";
    }
    return {};
}

// What completes the value of each option; an option means the same in every command.
std::string values() {
    std::map<std::string_view, std::string> actions;
    const auto add = [&](const OptionSpec& option) {
        if (!option.value.empty()) {
            actions[option.name] = action(option.kind, option.choices);
        }
    };
    for (const auto& command : commands()) {
        for (const auto& option : command.options) {
            add(option);
        }
    }
    for (const auto& option : globalOptions()) {
        add(option);
    }
    std::string text = "_zelto_value() {\n    case $1 in\n";
    for (const auto& [name, completion] : actions) {
        text += "    " + std::string(name) + ") " + completion + " ;;\n";
    }
    return "_zelto_takes_value() {\n    case $1 in\n    " + joined(std::views::keys(actions), " | ") +
           ") return 0 ;;\n    esac\n    return 1\n}\n\n" + text +
           "    *) return 1 ;;\n    esac\n    return 0\n}\n";
}

std::string namesOf(std::span<const OptionSpec> options) {
    std::string names;
    for (const auto& option : options) {
        names += " " + std::string(option.name);
    }
    return names;
}

std::string commandFunctions() {
    std::string known;
    std::string options;
    std::string arguments;
    for (const auto& command : commands()) {
        const auto name = shellQuoted(command.name);
        known += (known.empty() ? "" : " | ") + name;
        options += "    " + name + ") _zelto_offer" + namesOf(command.options) + " ;;\n";
        std::string offered;
        for (const auto& other : commands()) {
            if (other.name.starts_with(std::string(command.name) + " ")) {
                offered += (offered.empty() ? "_zelto_offer " : " ") +
                           std::string(other.name.substr(command.name.size() + 1));
            }
        }
        for (const auto& argument : command.arguments) {
            offered += (offered.empty() ? "" : "; ") + action(argument.kind, argument.choices);
        }
        arguments += "    " + name + ") " + (offered.empty() ? ":" : offered) + " ;;\n";
    }
    std::string first;
    for (const auto& command : commands()) {
        if (command.name.find(' ') == std::string_view::npos) {
            first += " " + std::string(command.name);
        }
    }
    return "\n_zelto_is_command() {\n    case $1 in\n    " + known +
           ") return 0 ;;\n    esac\n    return 1\n}\n" + "\n_zelto_options() {\n    case $1 in\n" + options +
           "    esac\n    _zelto_offer" + namesOf(globalOptions()) + "\n}\n" +
           "\n_zelto_arguments() {\n    case $1 in\n    '') _zelto_offer" + first + " ;;\n" + arguments +
           "    esac\n}\n";
}

} // namespace

std::string bashCompletions() {
    return start + values() + commandFunctions() + end;
}

} // namespace zelto::cli
