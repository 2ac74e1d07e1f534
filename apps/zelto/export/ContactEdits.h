#pragma once

#include <optional>
#include <string>

namespace zelto::cli {

// What options ask of a service that keeps contacts: whose contacts an export belongs to, what those that it
// makes are, and whether it makes a meeting too. As they were typed.
struct ContactEdits {
    std::optional<std::string> contacts; // --contacts
    std::optional<std::string> stage;    // --stage
    std::optional<std::string> status;   // --status
    bool withMeeting = false;            // --meeting

    // The first option that was given; empty for none.
    std::string firstOption() const {
        return contacts      ? "--contacts"
               : stage       ? "--stage"
               : status      ? "--status"
               : withMeeting ? "--meeting"
                             : "";
    }
};

} // namespace zelto::cli
