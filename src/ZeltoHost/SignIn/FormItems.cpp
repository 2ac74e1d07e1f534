#include <ZeltoHost/SignIn/FormItems.h>

#include <Platform/PercentEncoding.h>

#include <algorithm>

namespace zelto {

namespace {

std::optional<std::string> decodedWord(std::string_view word) {
    std::string text(word);
    std::ranges::replace(text, '+', ' ');
    return percentDecode(text);
}

} // namespace

std::optional<FormItems> decodedForm(std::string_view text) {
    FormItems items;
    while (!text.empty()) {
        const auto item = text.substr(0, text.find('&'));
        text.remove_prefix(std::min(text.size(), item.size() + 1));
        if (item.empty()) {
            continue;
        }
        const auto equals = item.find('=');
        auto name = decodedWord(item.substr(0, equals));
        auto value = equals == std::string_view::npos ? std::optional<std::string>("")
                                                      : decodedWord(item.substr(equals + 1));
        if (!name || !value) {
            return std::nullopt;
        }
        items.push_back({*std::move(name), std::move(value)});
    }
    return items;
}

std::optional<std::string> onlyValue(const FormItems& items, std::string_view name) {
    if (std::ranges::count(items, name, &URLQueryItem::name) != 1) {
        return std::nullopt;
    }
    return std::ranges::find(items, name, &URLQueryItem::name)->value;
}

bool repeatsName(const FormItems& items) {
    return std::ranges::any_of(items, [&](const URLQueryItem& item) {
        return std::ranges::count(items, item.name, &URLQueryItem::name) > 1;
    });
}

} // namespace zelto
