// A meeting note that was read keeps the promises of its format, and reads as the same when it is written.

#include "Require.h"

#include <Platform/JSON/JSONDecoder.h>
#include <Platform/JSON/JSONEncoder.h>
#include <Platform/UTF8.h>
#include <ZeltoHost/MeetingNote/MeetingNoteReader.h>

#include <algorithm>
#include <cstdint>

using namespace zelto;

namespace {

bool hasScheme(const std::string& link, std::initializer_list<std::string_view> schemes) {
    const auto url = URL::parse(link);
    return url && std::ranges::find(schemes, url->scheme()) != schemes.end();
}

void check(const MeetingNote& note) {
    require(isValidUTF8(note.title) && note.title.find_first_of("\r\n\t\x1b") == note.title.npos);
    require(!note.start || !note.end || *note.start <= *note.end);
    require(!note.link || !hasScheme(*note.link, {"javascript", "data", "file", "vbscript", "blob"}));
    require(!note.webLink || hasScheme(*note.webLink, {"http", "https"}));
    for (const auto& each : note.attendees) {
        require(each.email.find('@') != each.email.npos);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto note = MeetingNoteReader::parse({reinterpret_cast<const char*>(data), size});
    if (!note) {
        require(!note.error().message.empty());
        return 0;
    }
    check(*note);
    const auto written = JSONEncoder{DateStrategy::iso8601}.encode(*note);
    require(written.has_value());
    const auto again = MeetingNoteReader::parse(*written);
    require(again && again->title == note->title && again->attendees == note->attendees);
    return 0;
}
