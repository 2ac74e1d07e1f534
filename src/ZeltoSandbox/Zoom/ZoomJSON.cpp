#include <ZeltoSandbox/Zoom/ZoomJSON.h>

#include <Platform/Base64.h>
#include <Platform/ISO8601.h>
#include <ZeltoSandbox/Zoom/ZoomRequest.h>

#include <string>
#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::uint64_t firstNumber = 84'000'000'000;
constexpr std::uint64_t numberStep = 48'271;
constexpr double secondsOfMinute = 60;

std::string ownPassword(std::uint64_t number) {
    constexpr std::uint64_t smallest = 100'000; // of six digits
    return std::to_string(smallest + number % (9 * smallest));
}

JSONObject settings() {
    return {{"host_video", false},
            {"participant_video", false},
            {"cn_meeting", false},
            {"in_meeting", false},
            {"join_before_host", false},
            {"jbh_time", 0},
            {"mute_upon_entry", false},
            {"watermark", false},
            {"use_pmi", false},
            {"approval_type", 2},
            {"audio", "both"},
            {"auto_recording", "none"},
            {"alternative_hosts", ""},
            {"waiting_room", true},
            {"meeting_authentication", false},
            {"registrants_email_notification", true}};
}

} // namespace

MeetingStore::Name zoomName(std::uint64_t count) {
    const auto number = firstNumber + count * numberStep;
    const auto id = std::to_string(number);
    return {number, id,
            "https://zoom.us/j/" + id + "?pwd=" + base64URLEncoded("sandbox" + ownPassword(number)) + ".1"};
}

JSONObject zoomMeetingJSON(const MeetingRecord& meeting, std::string_view password) {
    const auto& details = meeting.details;
    const auto own = password.empty() ? ownPassword(meeting.number) : std::string(password);
    JSONObject json{{"uuid", base64Encoded("zm:00" + meeting.id)}, // 16 bytes
                    {"id", meeting.number},
                    {"host_id", zoomHost.id},
                    {"host_email", zoomHost.email},
                    {"topic", details.title},
                    {"type", zoomType(details.kind)},
                    {"status", "waiting"}};
    if (details.start && details.end) {
        json.set("start_time", iso8601(*details.start));
        json.set("duration",
                 static_cast<std::int64_t>((*details.end - *details.start).count() / secondsOfMinute));
    }
    json.set("timezone", "UTC");
    json.set("agenda", "");
    json.set("created_at", iso8601(meeting.created));
    json.set("start_url", "https://zoom.us/s/" + meeting.id + "?zak=" + base64URLEncoded("sandbox" + own));
    json.set("join_url", meeting.joinURL);
    json.set("password", own);
    json.set("h323_password", own);
    json.set("pstn_password", own);
    json.set("settings", settings());
    json.set("pre_schedule", false);
    return json;
}

} // namespace zelto::sandbox
