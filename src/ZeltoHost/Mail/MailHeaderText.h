#pragma once

#include <Platform/Date.h>
#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Values of header fields decoded: encoded words, raw bytes in UTF-8 or else windows-1252. What they give is
// valid UTF-8 without control characters. Values come unfolded; any thread.

std::string decodedText(std::string_view value);
std::vector<IntegrationsInteractorAddress> decodedAddresses(std::string_view value);
// One address, its first and last name split off the display name ("Jane Mary Doe", "Doe, Jane Mary").
IntegrationsInteractorAddress makeAddress(std::string_view email, std::string_view displayName);
std::optional<Date> decodedDate(std::string_view value);
// The first message id of the value, without its angle brackets.
std::optional<std::string> decodedMessageID(std::string_view value);

// Valid UTF-8 on one line: what is broken is replaced, control characters become blanks, blanks are trimmed.
std::string onOneLine(std::string_view text);

} // namespace zelto
