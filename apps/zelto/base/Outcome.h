#pragma once

#include "base/NextCommand.h"

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>

#include <optional>
#include <string>

namespace zelto::cli {

enum class ExitStatus : int { success = 0, failed = 1, wrongUsage = 2, interrupted = 130 };

// What a command that succeeded prints: members of the JSON document after "result", and the text without
// --json.
struct Report {
    JSONObject members;
    std::string text;
    bool isNotice = false;  // the text only says that it succeeded: --quiet leaves it out
    bool isPrinted = false; // the command has printed everything itself
};

// Another command that may help: the message goes on with it between these texts, and it is a member of the
// JSON document.
struct OtherCommand {
    std::string member;
    std::string before;
    NextCommand command;
    std::string after;
};

// Why a command failed.
struct Failure {
    std::string name;    // the case's name
    std::string message; // one plain sentence
    NextCommand next;
    ExitStatus status = ExitStatus::failed;
    JSONObject members = {}; // of the JSON document, after "next"
    std::optional<OtherCommand> other = {};
    // Nothing was sent of what has failed. It is said where it holds of the command as a whole.
    bool nothingWasSent = false;
    // Without --json: what is printed on standard output all the same, and lines to print after the message.
    std::string output = {};
    std::string details = {};
};

inline std::unexpected<Failure> wrongUsage(std::string message, NextCommand next = {}) {
    return failure(Failure{"wrongUsage", std::move(message), std::move(next), ExitStatus::wrongUsage});
}

template <class T> using Outcome = Result<T, Failure>;

// A coded record as members of a report. A record that was decoded from JSON always has JSON.
template <class Record> JSONObject membersOf(const Record& record) {
    const auto json = JSONValue::of(record);
    const auto* members = json ? json->asObject() : nullptr;
    return members ? *members : JSONObject();
}

} // namespace zelto::cli
