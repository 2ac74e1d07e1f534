#pragma once

#include <Platform/Enum.h>
#include <Platform/Result.h>
#include <ZeltoHost/MeetingNote/MeetingNote.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace zelto {

enum class MeetingNoteErrorCode : int {
    notFound,   // no such file
    unreadable, // the file cannot be opened or read
    tooLarge,   // more than 64 MiB
    notJSON,
    invalidNote, // JSON, but not a meeting note: a field is missing or invalid
};
ZELTO_ENUM(MeetingNoteErrorCode);

struct MeetingNoteError {
    MeetingNoteErrorCode code{};
    std::string message; // what is wrong, where, and what to do; contains no text of the note

    bool operator==(const MeetingNoteError&) const = default;
};

// Reads meeting notes; docs/meeting-note.md describes the format. Any thread.
struct MeetingNoteReader {
    static Result<MeetingNote, MeetingNoteError> open(const std::filesystem::path& path);
    static Result<MeetingNote, MeetingNoteError> parse(std::string_view json);
};

} // namespace zelto
