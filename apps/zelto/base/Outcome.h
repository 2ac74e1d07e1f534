#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>

#include <string>

namespace zelto::cli {

enum class ExitStatus : int { success = 0, failed = 1, wrongUsage = 2, interrupted = 130 };

// What a command that worked has to say: members of the JSON document behind "result", and the text without
// --json.
struct Report {
    JSONObject members;
    std::string text;
    bool isNotice = false; // the text only tells that it worked: --quiet leaves it out
    bool isTold = false;   // the command has printed everything itself
};

// Why a command did not work.
struct Failure {
    std::string name;    // the case's name
    std::string message; // one plain sentence
    std::string next;    // the command to try next; if empty, the help of the command
    ExitStatus status = ExitStatus::failed;
    JSONObject members = {}; // of the JSON document, behind "next"
    // Without --json: what there is all the same, for standard output, and lines behind the message, as they
    // are to be shown.
    std::string output = {};
    std::string details = {};
};

inline std::unexpected<Failure> wrongUsage(std::string message, std::string next = {}) {
    return failure(Failure{"wrongUsage", std::move(message), std::move(next), ExitStatus::wrongUsage});
}

template <class T> using Outcome = Result<T, Failure>;

// A coded record as members of a report. None if it has no JSON, which cannot be said of one that was JSON.
template <class Record> JSONObject membersOf(const Record& record) {
    const auto json = JSONValue::of(record);
    const auto* members = json ? json->asObject() : nullptr;
    return members ? *members : JSONObject();
}

} // namespace zelto::cli
