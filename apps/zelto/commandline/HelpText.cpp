#include "commandline/HelpText.h"

#include "accounts/ServiceNames.h"
#include "commandline/KnownValues.h"
#include "export/ServiceTable.h"

#include <Platform/Joined.h>

#include <algorithm>

namespace zelto::cli {

namespace {

constexpr std::size_t lineWidth = 80;

// Words broken into lines, all but the first indented.
std::string wrapped(std::string_view text, std::size_t indent, std::size_t firstColumn) {
    std::string lines;
    std::size_t column = firstColumn;
    while (!text.empty()) {
        const auto end = std::min(text.find(' '), text.size());
        const auto word = text.substr(0, end);
        if (column + word.size() > lineWidth && column > indent) {
            lines.back() = '\n';
            lines.append(indent, ' ');
            column = indent;
        }
        lines.append(word).append(" ");
        column += word.size() + 1;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (!lines.empty()) {
        lines.pop_back();
    }
    return lines;
}

std::string row(std::string_view left, std::string_view right) {
    constexpr std::size_t rightColumn = 26;
    auto line = "  " + std::string(left);
    if (line.size() + 2 > rightColumn) {
        line += '\n';
        line.append(rightColumn, ' ');
    } else {
        line.append(rightColumn - line.size(), ' ');
    }
    return line + wrapped(right, rightColumn, rightColumn) + '\n';
}

std::string optionLabel(const OptionSpec& option) {
    return std::string(option.name) + (option.value.empty() ? "" : " " + std::string(option.value));
}

std::string withValues(std::string_view help, ValueKind kind, const std::vector<std::string_view>& choices) {
    const auto values = knownValues(kind, choices);
    return std::string(help) + (values.empty() ? "" : ": ") + joined(values, ", ");
}

std::string optionHelp(const OptionSpec& option) {
    const auto help = withValues(option.help, option.kind, option.choices);
    return option.repeatable ? help + "; may be repeated" : help;
}

std::string optionRows(std::span<const OptionSpec> options) {
    std::string rows;
    for (const auto& option : options) {
        rows += row(optionLabel(option), optionHelp(option));
    }
    return rows;
}

std::string exampleLines(const CommandSpec& command) {
    std::string lines;
    for (const auto& example : command.examples) {
        lines += "  " + std::string(example) + '\n';
    }
    return lines;
}

// "Agenda, Bear and Things": those that can be exported to and are connected in this way.
std::string servicesConnectedBy(ServiceAuthFlow flow) {
    auto types = exportableServices();
    std::erase_if(types, [flow](ServiceType type) { return serviceAuthFlow(type) != flow; });
    std::string names;
    for (const auto& type : types) {
        const auto* separator = &type == &types.front() ? "" : &type == &types.back() ? " and " : ", ";
        names += separator + displayName(type);
    }
    return names;
}

} // namespace

std::string usageLine(const CommandSpec& command) {
    auto line = "zelto " + std::string(command.name);
    for (const auto& argument : command.arguments) {
        line += ' ' + shownName(argument);
    }
    const auto isTo = [](const OptionSpec& option) { return option.name == "--to"; };
    if (std::ranges::any_of(command.options, isTo)) {
        line += " --to ID|SERVICE";
    }
    return line + " [options]";
}

std::string helpText() {
    auto text =
        wrapped("zelto sends a mail or a meeting note to the services that you use: " +
                    servicesConnectedBy(ServiceAuthFlow::oauth) + " over the network, " +
                    servicesConnectedBy(ServiceAuthFlow::installedApp) +
                    " by the URL that the application is opened with, and " +
                    servicesConnectedBy(ServiceAuthFlow::systemPermission) + " by a folder on this machine.",
                0, 0) +
        "\n\nUsage: zelto COMMAND [options]\n\nCommands:\n";
    for (const auto& command : commands()) {
        text += row(command.name, command.summary);
    }
    text += "\nOptions of every command:\n" + optionRows(globalOptions());
    text += "\nExamples:\n" + exampleLines(*findCommand("export"));
    text += "\nMore about a command: zelto COMMAND --help\n"
            "Exit status: 0 success, 1 the operation failed, 2 wrong usage, 130 interrupted.\n";
    return text;
}

std::string helpText(const CommandSpec& command) {
    auto text = "Usage: " + usageLine(command) + "\n\n" + wrapped(command.description, 0, 0) + "\n";
    if (!command.arguments.empty()) {
        text += "\nArguments:\n";
        for (const auto& argument : command.arguments) {
            text += row(argument.name, withValues(argument.help, argument.kind, argument.choices));
        }
    }
    if (!command.options.empty()) {
        text += "\nOptions:\n" + optionRows(command.options);
    }
    text += "\nOptions of every command:\n" + optionRows(globalOptions());
    return text + "\nExamples:\n" + exampleLines(command);
}

} // namespace zelto::cli
