#pragma once

#include <Platform/Date.h>
#include <Platform/JSON/JSONValue.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// The user of a meeting service's account.
struct MeetingHost {
    std::string_view id;
    std::string_view name;
    std::string_view email;
};

// What its host sets of a meeting.
struct MeetingDetails {
    std::string title;
    std::optional<Date> start; // nullopt: no fixed time
    std::optional<Date> end;
    std::string kind = {}; // the service's own word, as "scheduled"; empty where it has none

    bool operator==(const MeetingDetails&) const = default;
};

struct MeetingVersion {
    MeetingDetails details;
    Date replaced;
};

struct MeetingRecord {
    std::uint64_t number = 0;
    std::string id; // that requests name it by
    std::string joinURL;
    MeetingDetails details;
    Date created;
    bool isAdditional = false;
    std::size_t changeCount = 0;
    std::vector<MeetingVersion> earlier = {}; // the latest that were replaced, the oldest first
    std::optional<Date> deleted = {};
};

// The meetings of an account, with those that were deleted.
class MeetingStore {
  public:
    static constexpr std::size_t maximumMeetingCount = 20'000; // without the additional ones
    static constexpr std::size_t keptVersionCount = 20;        // of a meeting

    struct Name {
        std::uint64_t number;
        std::string id;
        std::string joinURL;
    };

    // How the service names its meetings, which are counted from 1: the same in every sandbox.
    using Naming = Name (*)(std::uint64_t count);

    // `kind`: of additional meetings.
    MeetingStore(Naming naming, std::string_view kind) : naming_(naming), kind_(kind) {}

    const std::deque<MeetingRecord>& meetings() const { return meetings_; }

    // Null if there are as many as the store takes.
    const MeetingRecord* add(MeetingDetails details);

    // Null if there is none, or it was deleted.
    MeetingRecord* find(std::string_view id);

    // Null if there is none. `address` is a join URL without its query; the case of its escapes is ignored.
    const MeetingRecord* findByAddress(std::string_view address) const;

    static void change(MeetingRecord& meeting, MeetingDetails details);
    static void remove(MeetingRecord& meeting);

    void setAdditionalCount(std::size_t count);

  private:
    MeetingRecord& append(std::uint64_t count, MeetingDetails details, Date created);

    Naming naming_;
    std::string_view kind_;
    std::deque<MeetingRecord> meetings_;
    std::size_t count_ = 0; // without the additional ones
    std::size_t additionalCount_ = 0;
};

// What the page of the sandbox shows: the host and all meetings, with what they were before they were
// changed.
JSONObject meetingsState(const MeetingStore& store, const MeetingHost& host);

} // namespace zelto::sandbox
