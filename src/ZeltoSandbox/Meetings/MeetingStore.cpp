#include <ZeltoSandbox/Meetings/MeetingStore.h>

#include <Platform/PercentEncoding.h>
#include <ZeltoSandbox/DateText.h>

#include <algorithm>
#include <utility>

namespace zelto::sandbox {

namespace {

constexpr auto demoDate = Date::fromUnixSeconds(1767600000);   // 2026-01-05T08:00:00Z
constexpr auto firstStart = Date::fromUnixSeconds(1799053200); // 2027-01-04T09:00:00Z
constexpr TimeInterval betweenStarts{3600};
constexpr TimeInterval length{1800};

JSONValue dateState(const std::optional<Date>& date) {
    return date ? JSONValue(controlDateText(*date)) : JSONValue();
}

JSONObject detailsState(const MeetingDetails& details) {
    return {{"title", details.title},
            {"start", dateState(details.start)},
            {"end", dateState(details.end)},
            {"kind", details.kind}};
}

JSONObject versionState(const MeetingVersion& version) {
    auto json = detailsState(version.details);
    json.set("replaced", controlDateText(version.replaced));
    return json;
}

JSONObject meetingState(const MeetingRecord& meeting) {
    JSONValue::Array earlier;
    for (const auto& version : meeting.earlier) {
        earlier.push_back(versionState(version));
    }
    auto json = detailsState(meeting.details);
    json.set("id", meeting.id);
    json.set("joinURL", meeting.joinURL);
    json.set("date", controlDateText(meeting.created));
    json.set("isAdditional", meeting.isAdditional);
    json.set("changeCount", meeting.changeCount);
    json.set("earlier", std::move(earlier));
    json.set("deleted", dateState(meeting.deleted));
    return json;
}

// Decoded, without a query; as it is where it has a broken escape.
std::string addressOf(std::string_view url) {
    const auto address = url.substr(0, url.find('?'));
    return percentDecode(address).value_or(std::string(address));
}

} // namespace

MeetingRecord& MeetingStore::append(std::uint64_t count, MeetingDetails details, Date created) {
    auto [number, id, joinURL] = naming_(count);
    return meetings_.emplace_back(MeetingRecord{.number = number,
                                                .id = std::move(id),
                                                .joinURL = std::move(joinURL),
                                                .details = std::move(details),
                                                .created = created});
}

const MeetingRecord* MeetingStore::add(MeetingDetails details) {
    if (count_ >= maximumMeetingCount) {
        return nullptr;
    }
    return &append(++count_, std::move(details), Date::now());
}

MeetingRecord* MeetingStore::find(std::string_view id) {
    const auto found = std::ranges::find(meetings_, id, &MeetingRecord::id);
    return found == meetings_.end() || found->deleted ? nullptr : &*found;
}

const MeetingRecord* MeetingStore::findByAddress(std::string_view address) const {
    const auto wanted = addressOf(address);
    const auto found = std::ranges::find_if(
        meetings_, [&](const MeetingRecord& meeting) { return addressOf(meeting.joinURL) == wanted; });
    return found == meetings_.end() ? nullptr : &*found;
}

void MeetingStore::change(MeetingRecord& meeting, MeetingDetails details) {
    if (meeting.earlier.size() == keptVersionCount) {
        meeting.earlier.erase(meeting.earlier.begin());
    }
    meeting.earlier.push_back({std::exchange(meeting.details, std::move(details)), Date::now()});
    ++meeting.changeCount;
}

void MeetingStore::remove(MeetingRecord& meeting) {
    meeting.deleted = Date::now();
}

void MeetingStore::setAdditionalCount(std::size_t count) {
    for (; additionalCount_ < count; ++additionalCount_) {
        const auto start = firstStart + betweenStarts * static_cast<double>(additionalCount_);
        auto& meeting = append(maximumMeetingCount + additionalCount_ + 1,
                               {.title = "Additional meeting " + std::to_string(additionalCount_ + 1),
                                .start = start,
                                .end = start + length,
                                .kind = std::string(kind_)},
                               demoDate);
        meeting.isAdditional = true;
    }
    if (count < additionalCount_) {
        std::size_t index = 0;
        std::erase_if(meetings_,
                      [&](const MeetingRecord& meeting) { return meeting.isAdditional && index++ >= count; });
        additionalCount_ = count;
    }
}

JSONObject meetingsState(const MeetingStore& store, const MeetingHost& host) {
    JSONValue::Array meetings;
    for (const auto& meeting : store.meetings()) {
        meetings.push_back(meetingState(meeting));
    }
    return {{"user", JSONObject{{"name", host.name}, {"email", host.email}}},
            {"meetings", std::move(meetings)}};
}

} // namespace zelto::sandbox
