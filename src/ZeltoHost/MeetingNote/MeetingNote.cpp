#include <Platform/JSON/JSONRecordDescription.h>
#include <ZeltoHost/MeetingNote/MeetingNote.h>

namespace zelto {

void encodeJSON(JSONWriter& writer, const MeetingNoteText& value) {
    if (!value.isHTML) {
        writer.string(value.content);
        return;
    }
    writer.beginObject();
    writer.field("html", value.content);
    writer.endObject();
}

void decodeJSON(const JSONReader& reader, MeetingNoteText& value) {
    if (reader.kind() == JSONKind::string) {
        value = {std::string(reader.string()), false};
        return;
    }
    if (reader.kind() != JSONKind::object) {
        reader.failMismatch("a text, or an object with \"text\" or \"html\"");
    }
    const auto text = reader.optional<std::string>("text");
    const auto html = reader.optional<std::string>("html");
    if (text.has_value() == html.has_value()) {
        reader.fail("expected either \"text\" or \"html\"");
    }
    value = {html ? *html : *text, html.has_value()};
}

ZELTO_JSON_RECORD(MeetingNoteParty, email, name);
ZELTO_JSON_RECORD(MeetingNote, title, start, end, organiser, (attendees, defaulted), link, webLink, summary,
                  transcript, notes);

} // namespace zelto
