#include <ZeltoHost/Content/ContentNote.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(ContentNoteKind, textCut, formattingLeftOut, imagesLeftOut, charactersMissing);

std::string ContentNote::message() const {
    switch (kind) {
    case ContentNoteKind::textCut:
        return "The message's text is longer than an export may be, and its end is left out; export the "
               "message as an attachment to have all of it.";
    case ContentNoteKind::formattingLeftOut:
        return "The message's formatting is too extensive to be exported, and its text is exported without "
               "it.";
    case ContentNoteKind::imagesLeftOut:
        return "Images within the message's text are left out: they cannot be read, or are larger than "
               "32 MiB together.";
    case ContentNoteKind::charactersMissing:
        return "No font on this system has some of the message's characters, and the PDF shows boxes in "
               "their places: " +
               detail + ".";
    }
    return {};
}

} // namespace zelto
