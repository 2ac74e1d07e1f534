#include <ZeltoHost/SignIn/OAuth1.h>

#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>
#include <Platform/Crypto/RandomBytes.h>
#include <Platform/Joined.h>
#include <Platform/PercentEncoding.h>

#include <algorithm>
#include <chrono>

namespace zelto {

namespace {

// RFC 5849, section 3.6.
std::string encoded(std::string_view text) {
    return percentEncodeBytes(text, AllowedCharacters::unreserved);
}

// Section 3.4.1.2: without query and fragment, and without the scheme's default port.
std::string baseURL(const URL& url) {
    auto parts = URLComponents::of(url);
    const std::uint16_t standardPort = parts.scheme == "https" ? 443 : 80;
    if (parts.port == standardPort) {
        parts.port = std::nullopt;
    }
    const auto host = parts.host.value_or("");
    return parts.scheme + "://" + (host.find(':') == std::string::npos ? host : "[" + host + "]") +
           (parts.port ? ":" + std::to_string(*parts.port) : "") + (parts.path.empty() ? "/" : parts.path);
}

// Section 3.4.1.3.2.
std::string normalized(const std::vector<URLQueryItem>& items) {
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const auto& item : items) {
        pairs.emplace_back(encoded(item.name), encoded(item.value.value_or("")));
    }
    std::ranges::sort(pairs);
    return joined(pairs, "&", [](const auto& pair) { return pair.first + "=" + pair.second; });
}

} // namespace

OAuth1Moment OAuth1Moment::now() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch).count();
    constexpr std::size_t nonceBytes = 16;
    return {randomToken(nonceBytes), std::to_string(seconds)};
}

std::string oauth1BaseString(const URLRequest& request, const std::vector<URLQueryItem>& protocolParameters,
                             const FormItems& bodyItems) {
    auto items = parseFormItems(request.url.query().value_or("")).value_or(FormItems());
    items.insert(items.end(), protocolParameters.begin(), protocolParameters.end());
    items.insert(items.end(), bodyItems.begin(), bodyItems.end());
    return encoded(request.method) + "&" + encoded(baseURL(request.url)) + "&" + encoded(normalized(items));
}

void signOAuth1(URLRequest& request, const OAuth1Credentials& credentials,
                const std::vector<URLQueryItem>& extra, const FormItems& bodyItems,
                const OAuth1Moment& moment) {
    std::vector<URLQueryItem> parameters{{"oauth_consumer_key", credentials.consumerKey},
                                         {"oauth_nonce", moment.nonce},
                                         {"oauth_signature_method", "HMAC-SHA1"},
                                         {"oauth_timestamp", moment.timestamp},
                                         {"oauth_version", "1.0"}};
    if (!credentials.token.empty()) {
        parameters.push_back({"oauth_token", credentials.token});
    }
    parameters.insert(parameters.end(), extra.begin(), extra.end());
    const auto key = encoded(credentials.consumerSecret) + "&" + encoded(credentials.tokenSecret);
    const auto signature =
        base64Encoded(viewOf(hmacSHA1(key, oauth1BaseString(request, parameters, bodyItems))));
    parameters.push_back({"oauth_signature", signature});
    std::string header;
    for (const auto& [name, value] : parameters) {
        header += (header.empty() ? "OAuth " : ", ") + encoded(name) + "=\"" + encoded(*value) + "\"";
    }
    request.headers.set("Authorization", std::move(header));
}

std::optional<OAuth1Token> readOAuth1Token(std::string_view form) {
    const auto items = parseFormItems(form);
    const auto token = items ? onlyValue(*items, "oauth_token") : std::nullopt;
    const auto secret = items ? onlyValue(*items, "oauth_token_secret") : std::nullopt;
    if (!token || token->empty() || !secret) {
        return std::nullopt;
    }
    return OAuth1Token{*token, *secret, onlyValue(*items, "oauth_callback_confirmed") == "true"};
}

} // namespace zelto
