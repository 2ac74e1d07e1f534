#pragma once

#include <Platform/Data.h>
#include <Platform/HTTP/URLError.h>
#include <Platform/HTTP/URLResponse.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// What is known of a request that failed, beside its ServiceClientError.
struct ServiceRefusal {
    // What the service said about it, for people; empty if none of it can be shown. At most
    // `maximumLength` characters in one line, without secrets.
    std::string words;
    // The request never left this machine. If false, it is not known whether the service has acted on it.
    bool nothingWasSent = false;
    // The request is larger than the service takes (status 413 or 414): the bytes of its body, or of its
    // address where it has none.
    std::optional<std::uint64_t> excessiveSize = {};
    // It goes against what the service has (status 409).
    bool isConflict = false;

    static constexpr std::size_t maximumLength = 300;

    bool operator==(const ServiceRefusal&) const = default;
};

using RefusalObserver = std::function<void(const ServiceRefusal&)>;

// How a service's own text is shown to people: control characters and runs of white space are one blank each,
// secrets are masked, and what is longer than `maximumLength` characters is cut.
std::string cleanedWords(std::string_view text);

// The words in the body of a refusal, cleaned: the messages that its JSON has where services put them, else a
// plain text that is not HTML.
std::string wordsOfErrorBody(std::string_view body);

// What a response of success says that refuses the request all the same, by `"ok":false` in its body; no
// value for any other body.
std::optional<ServiceRefusal> refusalInSuccess(std::string_view body);

// What the end of a data task says of a request of that size; no value for a response with a status of
// success.
std::optional<ServiceRefusal> serviceRefusal(std::uint64_t requestSize, const std::optional<Data>& data,
                                             const std::shared_ptr<const URLResponse>& response,
                                             const std::optional<URLError>& error);

} // namespace zelto
