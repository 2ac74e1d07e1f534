#pragma once

#include <Platform/Enum.h>

#include <string>

namespace zelto {

enum class ContentNoteKind : int {
    textCut,           // the text is longer than the limit: its end is left out
    formattingLeftOut, // the HTML takes more memory or time than it may: its text stays, in plain form
    imagesLeftOut,     // images of the body cannot be read, or are larger than the limit
    charactersMissing, // no font has some characters: a box stands for each
};
ZELTO_ENUM(ContentNoteKind);

// Something that an export does not show as the message has it.
struct ContentNote {
    ContentNoteKind kind{};
    std::string detail; // charactersMissing: the characters; else empty

    // One plain sentence for the user.
    std::string message() const;

    bool operator==(const ContentNote&) const = default;
};

} // namespace zelto
