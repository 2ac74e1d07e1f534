#pragma once

#include <Platform/Date.h>
#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Decode the values of header fields: encoded words, and raw bytes as UTF-8 or else windows-1252. The results
// are valid UTF-8 without control characters. Values must be unfolded; any thread.

std::string decodedText(std::string_view value);
std::vector<IntegrationsInteractorAddress> decodedAddresses(std::string_view value);
// One address, with the display name split into first and last name ("Jane Mary Doe", "Doe, Jane Mary").
IntegrationsInteractorAddress makeAddress(std::string_view email, std::string_view displayName);
std::optional<Date> decodedDate(std::string_view value);
// The first message id of the value, without its angle brackets.
std::optional<std::string> decodedMessageID(std::string_view value);

// Valid UTF-8 on one line: invalid bytes are replaced, control characters become blanks, blanks at the ends
// are removed.
std::string onOneLine(std::string_view text);

} // namespace zelto
