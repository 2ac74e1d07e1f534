#pragma once

#include <Platform/URLComponents.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// The parameters of an "Authorization: OAuth …" header, decoded, without "realm". nullopt for another header.
std::optional<std::vector<URLQueryItem>> oauth1HeaderParameters(std::string_view header);

// The HMAC-SHA1 signature of RFC 5849, in Base64, of a request with these parameters from header, query and
// form; "oauth_signature" is left out of them.
std::string oauth1Signature(std::string_view method, std::string_view url,
                            const std::vector<URLQueryItem>& parameters, std::string_view clientSecret,
                            std::string_view tokenSecret);

} // namespace zelto::sandbox
