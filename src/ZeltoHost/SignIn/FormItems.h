#pragma once

#include <Platform/URLComponents.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// The items of a form (application/x-www-form-urlencoded), decoded; "+" is a blank. Answers of sign-ins have
// this form in queries, fragments and bodies.
using FormItems = std::vector<URLQueryItem>;

// Nothing for a broken escape, and for what is not UTF-8.
std::optional<FormItems> decodedForm(std::string_view text);

// The value of the one item of that name; nothing if there is none, or more than one.
std::optional<std::string> onlyValue(const FormItems& items, std::string_view name);

// Whether a name stands more than once.
bool repeatsName(const FormItems& items);

} // namespace zelto
