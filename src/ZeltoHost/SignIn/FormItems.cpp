#include <ZeltoHost/SignIn/FormItems.h>

#include <algorithm>

namespace zelto {

std::optional<std::string> onlyValue(const FormItems& items, std::string_view name) {
    if (std::ranges::count(items, name, &URLQueryItem::name) != 1) {
        return std::nullopt;
    }
    return std::ranges::find(items, name, &URLQueryItem::name)->value.value_or("");
}

bool repeatsName(const FormItems& items) {
    return std::ranges::any_of(items, [&](const URLQueryItem& item) {
        return std::ranges::count(items, item.name, &URLQueryItem::name) > 1;
    });
}

} // namespace zelto
