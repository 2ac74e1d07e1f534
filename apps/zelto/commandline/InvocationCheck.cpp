#include "commandline/InvocationCheck.h"

#include <algorithm>

namespace zelto::cli {

namespace {

std::vector<OptionSpec> optionsOf(const CommandSpec* command) {
    std::vector<OptionSpec> options(globalOptions().begin(), globalOptions().end());
    if (command) {
        options.insert(options.begin(), command->options.begin(), command->options.end());
    }
    return options;
}

// Of any command; none has an option with a value of the same name.
bool isFlag(std::string_view name) {
    const auto isThat = [&](const OptionSpec& option) { return option.name == name && option.value.empty(); };
    return name == "-h" || std::ranges::any_of(globalOptions(), isThat) ||
           std::ranges::any_of(commands(), [&](const CommandSpec& command) {
               return std::ranges::any_of(command.options, isThat);
           });
}

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

// "bar, json or none"
std::string listed(const std::vector<std::string_view>& choices) {
    std::string text;
    for (const auto& choice : choices) {
        const bool isLast = &choice == &choices.back();
        text += (text.empty() ? "" : isLast ? " or " : ", ") + std::string(choice);
    }
    return text;
}

Outcome<void> checkChoice(const Invocation& invocation, std::string_view name, const std::string& value,
                          const std::vector<std::string_view>& choices) {
    if (choices.empty() || std::ranges::find(choices, value) != choices.end()) {
        return {};
    }
    return wrongUsage(std::string(name) + " is " + listed(choices) + ", not " + quoted(value) + ".",
                      helpCommand(invocation.command));
}

Outcome<void> checkOption(const Invocation& invocation, const OptionSpec& option) {
    const auto values = invocation.values(option.name);
    if (values.size() > 1 && !option.repeatable) {
        return wrongUsage(std::string(option.name) + " is given more than once.",
                          helpCommand(invocation.command));
    }
    for (const auto& value : values) {
        if (value.empty() && option.kind != ValueKind::text) {
            return missingValue(invocation.command, option.name);
        }
        if (auto chosen = checkChoice(invocation, option.name, value, option.choices); !chosen) {
            return chosen;
        }
    }
    return {};
}

Outcome<void> checkArgument(const Invocation& invocation, const ArgumentSpec& argument) {
    const auto values = invocation.values(argument.name);
    if (values.empty() && argument.isOptional) {
        return {};
    }
    if (values.empty() || std::ranges::any_of(values, &std::string::empty)) {
        return wrongUsage(std::string(argument.name) + " is missing.", helpCommand(invocation.command));
    }
    return checkChoice(invocation, argument.name, values.back(), argument.choices);
}

} // namespace

std::string helpCommand(const CommandSpec* command) {
    return command ? "zelto " + std::string(command->name) + " --help" : "zelto --help";
}

std::unexpected<Failure> unexpectedArgument(const CommandSpec* command,
                                            const std::vector<std::string>& words) {
    const auto isOption = [](const std::string& word) { return word.starts_with('-') && word != "-"; };
    const auto option = std::ranges::find_if(words, isOption);
    if (option == words.end()) {
        const auto whose = command ? "zelto " + std::string(command->name) : std::string("zelto");
        return wrongUsage(whose + " has no use for the argument " + quoted(words.front()) + ".",
                          helpCommand(command));
    }
    const auto name = option->substr(0, option->find('='));
    const auto known = optionsOf(command);
    const auto nearest = nearestName(name, known, &OptionSpec::name);
    return wrongUsage("There is no option " + quoted(name) +
                          (nearest ? "; did you mean " + std::string(*nearest) + "?" : "."),
                      helpCommand(command));
}

std::unexpected<Failure> missingValue(const CommandSpec* command, std::string_view option) {
    const auto known = optionsOf(command);
    const auto spec = std::ranges::find(known, option, &OptionSpec::name);
    const auto value = spec == known.end() ? std::string() : ": " + std::string(spec->value);
    return wrongUsage(std::string(option) + " needs a value" + value + ".", helpCommand(command));
}

Outcome<void> checkFlags(const std::vector<std::string>& arguments) {
    const auto end = std::ranges::find(arguments, "--");
    for (auto argument = arguments.begin(); argument != end; ++argument) {
        const auto name = std::string_view(*argument).substr(0, argument->find('='));
        if (name.size() < argument->size() && isFlag(name)) {
            return wrongUsage(std::string(name) + " takes no value.");
        }
    }
    return {};
}

Outcome<void> checkInvocation(const Invocation& invocation) {
    const auto* command = invocation.command;
    const auto options = optionsOf(command);
    for (const auto& option : options) {
        if (auto checked = checkOption(invocation, option); !checked) {
            return checked;
        }
    }
    if (!command) {
        return {};
    }
    for (const auto& argument : command->arguments) {
        if (auto checked = checkArgument(invocation, argument); !checked) {
            return checked;
        }
    }
    return {};
}

} // namespace zelto::cli
