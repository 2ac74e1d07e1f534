#pragma once

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>
#include <Platform/URL.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct MeetingNoteParty {
    std::string email;
    std::optional<std::string> name;

    bool operator==(const MeetingNoteParty&) const = default;
};

ZELTO_JSON_CODED(MeetingNoteParty);

// A text of a note. In JSON a string is plain text; {"html": "..."} is HTML, {"text": "..."} plain text.
struct MeetingNoteText {
    std::string content;
    bool isHTML = false;

    bool operator==(const MeetingNoteText&) const = default;
};

ZELTO_JSON_CODED(MeetingNoteText);

// The facts of one meeting; docs/meeting-note.md describes the JSON. Only the title is required.
struct MeetingNote {
    std::string title;
    std::optional<Date> start;
    std::optional<Date> end;
    std::optional<MeetingNoteParty> organiser;
    std::vector<MeetingNoteParty> attendees;
    std::optional<std::string> link;    // opens the note in the program it comes from
    std::optional<std::string> webLink; // http or https
    std::optional<MeetingNoteText> summary;
    std::optional<MeetingNoteText> transcript;
    std::optional<MeetingNoteText> notes;

    bool operator==(const MeetingNote&) const = default;
};

ZELTO_JSON_CODED(MeetingNote);

} // namespace zelto
