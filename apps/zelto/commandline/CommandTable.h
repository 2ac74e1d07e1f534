#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

// What the command line offers, said once: parsing, help, completions and man pages are made from it.

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
    contentType,
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
};

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

// Edits that turn one text into the other.
std::size_t editDistance(std::string_view a, std::string_view b);

// The name that a mistyped one is nearest to, if it is near enough.
std::optional<std::string_view> nearestName(std::string_view name, const auto& range, auto member) {
    constexpr std::size_t longestName = 40;
    constexpr std::size_t largestDistance = 2;
    std::optional<std::string_view> nearest;
    auto least = largestDistance + 1;
    if (name.size() <= longestName) {
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
