#include "commandline/CommandLine.h"

#include "commandline/InvocationCheck.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>

namespace zelto::cli {

namespace {

using Given = std::map<std::string, std::vector<std::string>, std::less<>>;

void addOption(CLI::App& app, const OptionSpec& spec, Given& given) {
    const std::string name(spec.name);
    if (spec.value.empty()) {
        app.add_flag_function(name, [&given, name](std::int64_t) { given[name] = {"true"}; });
        return;
    }
    app.add_option_function<std::vector<std::string>>(
           name, [&given, name](const std::vector<std::string>& values) { given[name] = values; })
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void addArgument(CLI::App& app, const ArgumentSpec& spec, Given& given) {
    const std::string name(spec.name);
    if (spec.repeatable) {
        app.add_option_function<std::vector<std::string>>(
            name, [&given, name](const std::vector<std::string>& values) { given[name] = values; });
        return;
    }
    app.add_option_function<std::string>(name,
                                         [&given, name](const std::string& value) { given[name] = {value}; });
}

// A flag that stops the parsing before anything that is missing is complained of.
struct Stop {};

void addStoppingFlag(CLI::App& app, const std::string& names, bool& isWanted) {
    const auto stop = [&isWanted] {
        isWanted = true;
        throw Stop();
    };
    app.add_flag_callback(names, stop)->trigger_on_parse();
}

void addCommand(CLI::App& parent, std::string_view lastWord, const CommandSpec& spec,
                Invocation& invocation) {
    auto* app = parent.add_subcommand(std::string(lastWord), std::string(spec.summary));
    app->fallthrough();
    app->set_help_flag();
    app->preparse_callback([&invocation, &spec](std::size_t) { invocation.command = &spec; });
    for (const auto& argument : spec.arguments) {
        addArgument(*app, argument, invocation.given);
    }
    for (const auto& option : spec.options) {
        addOption(*app, option, invocation.given);
    }
}

void describe(CLI::App& app, Invocation& invocation) {
    app.set_help_flag();
    app.require_subcommand(0, 1);
    for (const auto& option : globalOptions()) {
        if (option.name == "--help") {
            addStoppingFlag(app, "-h,--help", invocation.wantsHelp);
        } else if (option.name == "--version") {
            addStoppingFlag(app, "--version", invocation.wantsVersion);
        } else {
            addOption(app, option, invocation.given);
        }
    }
    for (const auto& command : commands()) {
        const auto blank = command.name.find(' ');
        if (blank == std::string_view::npos) {
            addCommand(app, command.name, command, invocation);
        } else {
            auto* parent = app.get_subcommand(std::string(command.name.substr(0, blank)));
            addCommand(*parent, command.name.substr(blank + 1), command, invocation);
        }
    }
}

// The first word that is no option: the command's name, or its first one.
std::optional<std::string> firstWord(const std::vector<std::string>& arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (!arguments[i].starts_with('-')) {
            return arguments[i];
        }
        const auto option = std::ranges::find(globalOptions(), arguments[i], &OptionSpec::name);
        if (option != globalOptions().end() && !option->value.empty()) {
            ++i;
        }
    }
    return std::nullopt;
}

// The parser takes the next word for the value of "--title=", which is an empty one.
std::vector<std::string> withEmptyValuesApart(const std::vector<std::string>& arguments) {
    std::vector<std::string> apart;
    for (const auto& argument : arguments) {
        if (argument.size() > 3 && argument.starts_with("--") && argument.find('=') == argument.size() - 1) {
            apart.push_back(argument.substr(0, argument.size() - 1));
            apart.emplace_back();
        } else {
            apart.push_back(argument);
        }
    }
    return apart;
}

Outcome<void> checkFirstWord(const std::vector<std::string>& arguments) {
    const auto word = firstWord(arguments);
    if (!word || std::ranges::any_of(commands(), [&](const CommandSpec& command) {
            return command.name == *word || command.name.starts_with(*word + " ");
        })) {
        return {};
    }
    const auto nearest = nearestCommand(*word);
    return wrongUsage("There is no command \"" + *word + "\".",
                      nearest ? "zelto " + std::string(*nearest) + " --help" : "zelto --help");
}

} // namespace

bool Invocation::has(std::string_view name) const {
    return given.contains(name);
}

std::optional<std::string> Invocation::value(std::string_view name) const {
    const auto found = given.find(name);
    return found == given.end() || found->second.empty() ? std::nullopt : std::optional(found->second.back());
}

std::vector<std::string> Invocation::values(std::string_view name) const {
    const auto found = given.find(name);
    return found == given.end() ? std::vector<std::string>() : found->second;
}

Outcome<Invocation> parseCommandLine(const std::vector<std::string>& arguments) {
    if (const auto known = checkFirstWord(arguments); !known) {
        return failure(known.error());
    }
    if (const auto checked = checkFlags(arguments); !checked) {
        return failure(checked.error());
    }
    Invocation invocation;
    CLI::App app;
    describe(app, invocation);
    try {
        auto reversed = withEmptyValuesApart(arguments);
        std::ranges::reverse(reversed);
        app.parse(std::move(reversed));
    } catch (const Stop&) {
        return invocation;
    } catch (const CLI::ExtrasError&) {
        return unexpectedArgument(invocation.command, app.remaining(true));
    } catch (const CLI::ArgumentMismatch& error) {
        // The parser's text begins with the option's name and a colon.
        const std::string_view text = error.what();
        return missingValue(invocation.command, text.substr(0, text.find(':')));
    } catch (const CLI::ParseError& error) {
        return wrongUsage(error.what(), helpCommand(invocation.command));
    }
    if (const auto checked = checkInvocation(invocation); !checked) {
        return failure(checked.error());
    }
    return invocation;
}

} // namespace zelto::cli
