#pragma once

#include <string_view>

namespace zelto {

// Whether the text is an e-mail address that can be written to: the addr-spec of RFC 5322 without comments
// and folding, with the characters of RFC 6531, within the lengths of RFC 5321 (64 octets before the "@", 254
// in all). The local part is a dot-atom or quoted; the domain consists of labels, or is an IPv4 or IPv6
// literal in brackets. A single name ("localhost") is a domain; one that ends in a number is not. Time is
// linear in the length.
bool isEmailAddress(std::string_view text);

} // namespace zelto
