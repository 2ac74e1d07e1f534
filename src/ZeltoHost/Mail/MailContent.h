#pragma once

#include <Platform/Result.h>
#include <ZeltoHost/Mail/MailError.h>
#include <ZeltoHost/Mail/MailMessage.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace zelto {

// Contents of parts, decoded while they are read from the file: except for the two functions that give a
// string, memory holds one block, whatever the size. All fail if reading the file fails, and with `changed`
// if the file was changed since it was opened.

// Passes the content on piece by piece, until the sink returns false.
Result<void, MailError> decodeContent(const MailFile& file, const MailPart& part,
                                      const std::function<bool(std::string_view)>& sink);

// The exact size, found by decoding.
Result<std::uint64_t, MailError> decodedSize(const MailFile& file, const MailPart& part);

// Creates the file, which must not exist. After an error there is no file.
Result<void, MailError> writeContent(const MailFile& file, const MailPart& part,
                                     const std::filesystem::path& path);

// `contentTooLarge` if it exceeds the limit.
Result<std::string, MailError> readContent(const MailFile& file, const MailPart& part, std::size_t limit);

struct MailText {
    std::string text;
    bool isCut = false; // it is longer than the limit

    bool operator==(const MailText&) const = default;
};

// A text in UTF-8 with "\n" for line breaks, soft line breaks undone; of a longer one as many bytes as the
// limit allows. If the charset is absent or unknown, the text is read as UTF-8 if it is valid, else as
// windows-1252; bytes that the charset does not have become U+FFFD.
Result<MailText, MailError> readText(const MailFile& file, const MailPart& part, std::size_t limit);

} // namespace zelto
