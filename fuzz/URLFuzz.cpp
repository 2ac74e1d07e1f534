#include "Require.h"

#include <Platform/FileNames.h>
#include <Platform/PercentEncoding.h>
#include <Platform/Text.h>
#include <Platform/URLComponents.h>
#include <Platform/UTF8.h>

#include <cstdint>

using namespace zelto;

namespace {

void checkComponents(const URL& url) {
    const auto parts = URLComponents::of(url);
    const auto again = parts.url();
    require(again.has_value());
    require(URLComponents::of(*again) == parts);
    require(again->scheme() == url.scheme() && again->host() == url.host() && again->port() == url.port());
    require(again->percentEncodedPath() == url.percentEncodedPath() && again->fragment() == url.fragment());
    require(again->userInfo() == url.userInfo() && again->query().has_value() == url.query().has_value());
}

void checkURL(std::string_view text) {
    const auto url = URL::parse(text);
    if (!url) {
        return;
    }
    require(url->absoluteString() == text);
    require(URL::parse(url->absoluteString()) == url);
    require(isValidUTF8(url->path()) && isValidUTF8(url->lastPathComponent()));
    checkComponents(*url);
    if (const auto path = url->filePath(); !path.empty() && path.is_absolute()) {
        require(URL::file(path).filePath() == path);
    }
}

} // namespace

// The text as a URL; as a reference resolved against a URL, if it contains a line end; as foreign text in
// each part of a URL.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    checkURL(text);
    if (const auto end = text.find('\n'); end != std::string_view::npos) {
        if (const auto base = URL::parse(text.substr(0, end))) {
            if (const auto target = base->resolving(text.substr(end + 1))) {
                checkURL(target->absoluteString());
            }
            checkURL(base->appendingPathComponent(text.substr(end + 1)).absoluteString());
            auto parts = URLComponents::of(*base);
            parts.queryItems = {{std::string(text.substr(end + 1)), std::string(text)}};
            const auto url = parts.url();
            require(url && URLComponents::of(*url).queryItems == parts.queryItems);
        }
    }
    const auto encoded = percentEncode(text);
    require(encoded.has_value() == isValidUTF8(text));
    require(!encoded || percentDecode(*encoded) == text);
    require(percentDecodeBytes(percentEncodeBytes(text, AllowedCharacters::path)) == text);
    const auto name = cleanedFileName(text);
    require(!name.empty() && name.size() <= cleanedFileNameLimit && name.find('/') == std::string::npos);
    require(isValidUTF8(name) && cleanedFileName(name) == name);
    return 0;
}
