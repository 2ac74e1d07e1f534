#include <ZeltoSandbox/Meetings/JoinPage.h>

#include <Platform/ISO8601.h>
#include <ZeltoSandbox/ServicePage.h>

namespace zelto::sandbox {

namespace {

std::string fact(const std::string& name, std::string_view value) {
    return "<p>" + name + ": <b>" + shownText(value) + "</b></p>";
}

// "2026-12-24 09:00 UTC"
std::string timeText(Date date) {
    constexpr std::size_t withMinutes = std::string_view("2026-12-24T09:00").size();
    const auto text = iso8601(date);
    const auto time = text.find('T');
    return time == std::string::npos
               ? text
               : text.substr(0, time) + " " +
                     text.substr(time + 1, withMinutes - std::string_view("2026-12-24T").size()) + " UTC";
}

std::string timesText(const MeetingDetails& details) {
    if (!details.start || *details.start >= Date::distantFuture()) {
        return "no fixed time";
    }
    return timeText(*details.start) + (details.end ? " to " + timeText(*details.end) : "");
}

std::string titleText(const MeetingDetails& details) {
    return details.title.empty() ? "Meeting without a title" : shownText(details.title);
}

} // namespace

SandboxResponse joinPage(std::string_view service, const MeetingStore& store, const MeetingHost& host,
                         const SandboxRequest& request) {
    if (request.method != "GET" && request.method != "HEAD") {
        return SandboxResponse::text("Method Not Allowed\n", 405).because("this is a page for a browser");
    }
    const auto* meeting = store.findByAddress("https://" + request.host + request.path);
    if (!meeting) {
        return servicePage(service, "<h1>There is no meeting at this address</h1>", 404)
            .because("there is no meeting at this address");
    }
    const auto title = titleText(meeting->details);
    if (meeting->deleted) {
        return servicePage(service,
                           "<h1>This meeting was deleted</h1><p>" + title + "</p>" +
                               fact("Deleted", timeText(*meeting->deleted)),
                           404)
            .because("the meeting was deleted");
    }
    return servicePage(service,
                       "<h1>" + title + "</h1>" + fact("When", timesText(meeting->details)) +
                           fact("Host", host.name) + fact("Meeting ID", meeting->id) +
                           "<p>Whoever has this link joins the meeting here.</p>",
                       200);
}

} // namespace zelto::sandbox
