#include "CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <memory>

namespace zelto::cli {

namespace {

using Given = std::map<std::string, std::vector<std::string>, std::less<>>;

void addOption(CLI::App& app, const OptionSpec& spec, Given& given) {
    const std::string name(spec.name);
    if (spec.value.empty()) {
        app.add_flag_function(name, [&given, name](std::int64_t) { given[name] = {"true"}; });
        return;
    }
    auto* option = app.add_option_function<std::vector<std::string>>(
        name, [&given, name](const std::vector<std::string>& values) { given[name] = values; });
    option->expected(1)->allow_extra_args(false)->type_name(std::string(spec.value));
    option->multi_option_policy(spec.repeatable ? CLI::MultiOptionPolicy::TakeAll
                                                : CLI::MultiOptionPolicy::Throw);
    if (!spec.choices.empty()) {
        option->check(CLI::IsMember(std::vector<std::string>(spec.choices.begin(), spec.choices.end())));
    }
}

void addArgument(CLI::App& app, const ArgumentSpec& spec, Given& given) {
    const std::string name(spec.name);
    auto* option = app.add_option_function<std::string>(
        name, [&given, name](const std::string& value) { given[name] = {value}; });
    option->required();
    if (!spec.choices.empty()) {
        option->check(CLI::IsMember(std::vector<std::string>(spec.choices.begin(), spec.choices.end())));
    }
}

// A flag that stops the parsing before anything that is missing is complained of.
struct Stop {};

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

// The words that stand before the first option: the command's name and its arguments.
std::vector<std::string> leadingWords(const std::vector<std::string>& arguments) {
    std::vector<std::string> words;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto& argument = arguments[i];
        if (!argument.starts_with('-')) {
            words.push_back(argument);
            continue;
        }
        const auto option = std::ranges::find(globalOptions(), argument, &OptionSpec::name);
        if (option != globalOptions().end() && !option->value.empty()) {
            ++i;
        }
    }
    return words;
}

std::unexpected<Failure> unknownCommand(const std::string& word) {
    const auto nearest = nearestCommand(word);
    return wrongUsage("There is no command \"" + word + "\".",
                      nearest ? "zelto " + std::string(*nearest) + " --help" : "zelto --help");
}

// One sentence of what the parser says, which may be several lines.
std::string sentence(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    if (!text.ends_with('.')) {
        text += '.';
    }
    return text;
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
    const auto words = leadingWords(arguments);
    if (!words.empty() && std::ranges::none_of(commands(), [&](const CommandSpec& command) {
            return command.name == words.front() || command.name.starts_with(words.front() + " ");
        })) {
        return unknownCommand(words.front());
    }

    Invocation invocation;
    CLI::App app;
    app.set_help_flag();
    app.require_subcommand(0, 1);
    for (const auto& option : globalOptions()) {
        if (option.name == "--help") {
            app.add_flag_callback("-h,--help",
                                  [&] {
                                      invocation.wantsHelp = true;
                                      throw Stop();
                                  })
                ->trigger_on_parse();
        } else if (option.name == "--version") {
            app.add_flag_callback("--version",
                                  [&] {
                                      invocation.wantsVersion = true;
                                      throw Stop();
                                  })
                ->trigger_on_parse();
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

    try {
        auto reversed = arguments;
        std::ranges::reverse(reversed);
        app.parse(std::move(reversed));
    } catch (const Stop&) {
        return invocation;
    } catch (const CLI::ParseError& error) {
        const auto help = invocation.command ? "zelto " + std::string(invocation.command->name) + " --help"
                                             : std::string("zelto --help");
        return wrongUsage(sentence(error.what()), help);
    }
    return invocation;
}

} // namespace zelto::cli
