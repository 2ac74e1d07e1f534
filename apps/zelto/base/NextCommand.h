#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto::cli {

// What to try after a failure: a command, or the one that failed with other options. Every one of them runs
// as it is printed.
class NextCommand {
  public:
    // The values of each option or argument; none leaves it out. That of a flag is "true".
    using Options = std::map<std::string, std::vector<std::string>, std::less<>>;

    // The help of the command that failed.
    NextCommand() = default;

    // "zelto accounts", quoted for a shell where it needs that. The user's --data-dir and the like are added.
    NextCommand(std::string command) : command_(std::move(command)) {}

    NextCommand(const char* command) : command_(command) {}

    // What was typed, with these options and arguments in place of those of the same names.
    static NextCommand again(Options changes = {}) {
        NextCommand next;
        next.changes_ = std::move(changes);
        return next;
    }

    // What was typed, with that option.
    static NextCommand again(std::string option, std::string value) {
        return again(Options{{std::move(option), {std::move(value)}}});
    }

    static NextCommand againWith(std::string flag) { return again(std::move(flag), "true"); }

    bool isHelp() const { return command_.empty() && !changes_; }

    const std::string& command() const { return command_; }

    const std::optional<Options>& changes() const { return changes_; }

    bool operator==(const NextCommand&) const = default;

  private:
    std::string command_;
    std::optional<Options> changes_;
};

} // namespace zelto::cli
