#pragma once

#include <Platform/URLComponents.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// As parsed by parseFormItems(). Responses of sign-ins have this form in queries, fragments and bodies.
using FormItems = std::vector<URLQueryItem>;

// The value of the only item of that name, "" if it has none; `nullopt` if there is no such item, or more
// than one.
std::optional<std::string> onlyValue(const FormItems& items, std::string_view name);

// Whether a name occurs more than once.
bool repeatsName(const FormItems& items);

} // namespace zelto
