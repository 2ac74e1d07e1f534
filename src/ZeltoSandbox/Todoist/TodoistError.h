#pragma once

#include <Platform/JSON/JSONValue.h>

#include <optional>
#include <string>

namespace zelto::sandbox {

// A refusal as Todoist writes it, of a whole request or of one command.
struct TodoistError {
    int status = 400; // of HTTP
    int code = 0;     // Todoist's own
    std::string tag;
    std::string text;
    JSONObject extra = {};

    JSONObject json() const;
    // One line for the page: "Invalid argument value: content is empty".
    std::string summary() const;

    // An argument with a value that is not accepted, and why.
    static TodoistError invalidArgument(const std::string& argument, const std::string& explanation);
    static TodoistError missingArgument(const std::string& argument);
    static TodoistError projectNotFound();
    static TodoistError itemNotFound();
    // A temporary identifier that no command of the request has created.
    static TodoistError invalidTemporaryID();
    // Todoist's error for a status of HTTP.
    static TodoistError ofStatus(int status);
};

} // namespace zelto::sandbox
