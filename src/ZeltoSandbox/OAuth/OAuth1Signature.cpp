#include <ZeltoSandbox/OAuth/OAuth1Signature.h>

#include <Platform/ASCII.h>
#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>
#include <Platform/Joined.h>
#include <Platform/PercentEncoding.h>

#include <algorithm>
#include <utility>

namespace zelto::sandbox {

namespace {

std::string encoded(std::string_view text) {
    return percentEncodeBytes(text, AllowedCharacters::unreserved);
}

} // namespace

std::optional<std::vector<URLQueryItem>> oauth1HeaderParameters(std::string_view header) {
    constexpr std::string_view scheme = "OAuth ";
    if (header.size() < scheme.size() || !equalIgnoringASCIICase(header.substr(0, scheme.size()), scheme)) {
        return std::nullopt;
    }
    header.remove_prefix(scheme.size());
    std::vector<URLQueryItem> items;
    while (!header.empty()) {
        const auto end = std::min(header.find(','), header.size());
        const auto item = trimmedBlanks(header.substr(0, end));
        header.remove_prefix(std::min(end + 1, header.size()));
        const auto equals = item.find("=\"");
        if (equals == std::string_view::npos || !item.ends_with('"') || item.size() < equals + 3) {
            return std::nullopt;
        }
        auto name = percentDecode(item.substr(0, equals));
        auto value = percentDecode(item.substr(equals + 2, item.size() - equals - 3));
        if (!name || !value) {
            return std::nullopt;
        }
        if (*name != "realm") {
            items.push_back({std::move(*name), std::move(*value)});
        }
    }
    return items;
}

std::string oauth1Signature(std::string_view method, std::string_view url,
                            const std::vector<URLQueryItem>& parameters, std::string_view clientSecret,
                            std::string_view tokenSecret) {
    std::vector<std::pair<std::string, std::string>> sorted;
    for (const auto& item : parameters) {
        if (item.name != "oauth_signature") {
            sorted.emplace_back(encoded(item.name), encoded(item.value.value_or("")));
        }
    }
    std::ranges::sort(sorted);
    const auto form = joined(sorted, "&", [](const auto& each) { return each.first + '=' + each.second; });
    const auto base = encoded(method) + '&' + encoded(url) + '&' + encoded(form);
    return base64Encoded(viewOf(hmacSHA1(encoded(clientSecret) + '&' + encoded(tokenSecret), base)));
}

} // namespace zelto::sandbox
