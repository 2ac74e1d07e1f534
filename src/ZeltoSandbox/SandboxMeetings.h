#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What the accounts of the meeting services have, and what they refuse.
struct SandboxMeetings {
    static constexpr std::size_t maximumAdditionalCount = 20'000;
    static constexpr std::size_t maximumDailyLimit = 10'000;

    // "Additional meeting 1" and so on, of each service.
    std::size_t additionalMeetings = 0;
    // Zoom: how many meetings may be created or changed within 24 hours. nullopt: any number.
    std::optional<std::size_t> dailyLimit;
    // GoTo: a creation makes no meeting, and responds with an empty list.
    bool emptyList = false;
    // Microsoft Teams: the account is a personal one, for which there are no online meetings.
    bool personalAccount = false;
    // Microsoft Teams: for each licence the "provisioningStatus" of each of its plans. nullopt: the demo
    // licences, of which some plans work.
    std::optional<std::vector<std::vector<std::string>>> licenses;

    bool operator==(const SandboxMeetings&) const = default;
};

} // namespace zelto
