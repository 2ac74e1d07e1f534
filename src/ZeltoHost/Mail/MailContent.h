#pragma once

#include <Platform/Result.h>
#include <ZeltoHost/Mail/MailError.h>
#include <ZeltoHost/Mail/MailMessage.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace zelto {

// Contents of parts, decoded from the file on the way: whatever their size, memory holds a block of it, but
// for the two that give a string. All may fail as reading the file may, and are `changed` if the file was
// changed since it was opened.

// Hands the content over piece by piece, until the sink gives false.
Result<void, MailError> decodeContent(const MailFile& file, const MailPart& part,
                                      const std::function<bool(std::string_view)>& sink);

// Exact, found by decoding.
Result<std::uint64_t, MailError> decodedSize(const MailFile& file, const MailPart& part);

// Makes the file, which must not exist. Nothing is left of it after an error.
Result<void, MailError> writeContent(const MailFile& file, const MailPart& part,
                                     const std::filesystem::path& path);

// bodyTooLarge beyond the limit.
Result<std::string, MailError> readContent(const MailFile& file, const MailPart& part, std::size_t limit);

// A text in UTF-8 with "\n" for line breaks, soft line breaks undone. A charset that is absent or unknown is
// taken as UTF-8 if the text is that, and as windows-1252 otherwise; bytes that it does not have become
// U+FFFD.
Result<std::string, MailError> readText(const MailFile& file, const MailPart& part, std::size_t limit);

} // namespace zelto
