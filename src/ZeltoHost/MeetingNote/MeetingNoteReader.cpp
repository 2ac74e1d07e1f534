#include <Platform/EnumDescription.h>
#include <Platform/FileManager.h>
#include <Platform/URL.h>
#include <ZeltoHost/Mail/MailHeaderText.h>
#include <ZeltoHost/MeetingNote/MeetingNoteReader.h>

#include <algorithm>
#include <array>

namespace zelto {

ZELTO_DESCRIBE_ENUM(MeetingNoteErrorCode, notFound, unreadable, tooLarge, notJSON, invalidNote);

namespace {

constexpr std::uint64_t maxSize = 64U << 20;

std::unexpected<MeetingNoteError> invalid(std::string message) {
    return failure(MeetingNoteError{MeetingNoteErrorCode::invalidNote, std::move(message)});
}

MeetingNoteError errorOf(const FileError& error) {
    if (error.code == FileErrorCode::notFound || error.code == FileErrorCode::notDirectory) {
        return {MeetingNoteErrorCode::notFound, "There is no such file; check the path."};
    }
    if (error.code == FileErrorCode::tooLarge) {
        return {MeetingNoteErrorCode::tooLarge,
                "The meeting note is larger than 64 MiB; shorten its transcript."};
    }
    return {MeetingNoteErrorCode::unreadable,
            "The file cannot be read; check that it is a file and that you may read it."};
}

// Not schemes that run or read something on the user's machine.
bool mayLinkTo(const URL& url) {
    static constexpr std::array<std::string_view, 5> refused{"javascript", "data", "file", "vbscript",
                                                             "blob"};
    return std::ranges::find(refused, url.scheme()) == refused.end();
}

Result<MeetingNote, MeetingNoteError> checked(MeetingNote note) {
    note.title = onOneLine(note.title);
    if (note.start && note.end && *note.end < *note.start) {
        return invalid("\"end\" lies before \"start\"; correct one of them.");
    }
    const auto link = note.link ? URL::parse(*note.link) : std::nullopt;
    if (note.link && (!link || !mayLinkTo(*link))) {
        return invalid("\"link\" is no URL that a note may have; give one such as https://example.org/note.");
    }
    const auto webLink = note.webLink ? URL::parse(*note.webLink) : std::nullopt;
    if (note.webLink && (!webLink || (webLink->scheme() != "https" && webLink->scheme() != "http"))) {
        return invalid("\"webLink\" is no web address; give one that begins with https://.");
    }
    if (note.organiser && note.organiser->email.find('@') == std::string::npos) {
        return invalid("\"organiser.email\" is no e-mail address; it needs an @.");
    }
    for (std::size_t index = 0; index < note.attendees.size(); ++index) {
        if (note.attendees[index].email.find('@') == std::string::npos) {
            return invalid("\"attendees[" + std::to_string(index) +
                           "].email\" is no e-mail address; it needs an @.");
        }
    }
    return note;
}

} // namespace

Result<MeetingNote, MeetingNoteError> MeetingNoteReader::open(const std::filesystem::path& path) {
    const auto content = FileManager::readFile(path, maxSize);
    return content ? parse(viewOf(*content)) : failure(errorOf(content.error()));
}

Result<MeetingNote, MeetingNoteError> MeetingNoteReader::parse(std::string_view json) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (json.starts_with(byteOrderMark)) {
        json.remove_prefix(byteOrderMark.size());
    }
    auto note = JSONDecoder{DateStrategy::iso8601}.decode<MeetingNote>(json);
    if (note) {
        return checked(*std::move(note));
    }
    if (note.error().reason == DecodingError::Reason::syntax) {
        return failure(MeetingNoteError{MeetingNoteErrorCode::notJSON,
                                        "The file is no JSON: " + note.error().message()});
    }
    return invalid("The file is no meeting note: " + note.error().message());
}

} // namespace zelto
