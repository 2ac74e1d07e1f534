#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The commands and their options: parsing, help, completions and man pages are made from this table.

namespace zelto::cli {

// Where a value comes from, for completions.
enum class ValueKind {
    text,
    secret, // must not be seen in a list of processes; "-" takes it from standard input
    file,
    directory,
    command,
    service,
    account,
    accountOrService,
    meetingAccountOrService, // of a service that meetings are made on
    contentType,
    target, // of the account that --to names
    mail
};

struct OptionSpec {
    std::string_view name;  // "--title"
    std::string_view value; // "TEXT"; empty for a flag
    std::string_view help;
    ValueKind kind = ValueKind::text;
    std::vector<std::string_view> choices = {};
    bool repeatable = false;
};

struct ArgumentSpec {
    std::string_view name; // "MAIL"
    std::string_view help;
    ValueKind kind = ValueKind::text;
    std::vector<std::string_view> choices = {};
    bool isOptional = false;
    bool repeatable = false; // the last one alone
};

// "MAIL", "[FOLDER]", "FILE..."
std::string shownName(const ArgumentSpec& argument);

struct CommandSpec {
    std::string_view name; // "export", "accounts remove"
    std::string_view summary;
    std::string_view description;
    std::vector<ArgumentSpec> arguments;
    std::vector<OptionSpec> options;
    std::vector<std::string_view> examples; // whole commands that run as they stand
};

std::span<const CommandSpec> commands();

// Options that every command takes.
std::span<const OptionSpec> globalOptions();

const CommandSpec* findCommand(std::string_view name);

// The number of edits between two texts.
std::size_t editDistance(std::string_view a, std::string_view b);

// The name that a mistyped one is nearest to, if it is near enough.
std::optional<std::string_view> nearestName(std::string_view name, const auto& range, auto member) {
    constexpr std::size_t maximumLength = 40;
    constexpr std::size_t maximumDistance = 2;
    std::optional<std::string_view> nearest;
    auto least = maximumDistance + 1;
    if (name.size() <= maximumLength) {
        for (const auto& each : range) {
            if (const auto distance = editDistance(each.*member, name); distance < least) {
                least = distance;
                nearest = each.*member;
            }
        }
    }
    return nearest;
}

std::optional<std::string_view> nearestCommand(std::string_view name);

} // namespace zelto::cli
