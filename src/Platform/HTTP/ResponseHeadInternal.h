#pragma once

// Internal to the transport: the head of a response, read line by line.

#include <Platform/HTTP/HTTPHeaders.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zelto {

class ResponseHead {
  public:
    enum class Progress { going, complete, tooManyFields };

    // A status line begins a new head, as after an informational response. `complete` is given once, for the
    // blank line that ends the final head; what follows (trailers) is ignored.
    Progress take(std::string_view line);

    bool isComplete() const { return isComplete_; }

    int status() const { return status_; }

    const HTTPHeaders& headers() const { return headers_; }

    // Leaves the head without fields.
    HTTPHeaders takeHeaders() { return std::exchange(headers_, {}); }

    // Of the body as transferred, before decoding.
    std::optional<std::uint64_t> contentLength() const;

  private:
    Progress takeField(std::string_view line);

    int status_ = 0;
    int fieldCount_ = 0;
    bool isComplete_ = false;
    std::string lastName_;
    HTTPHeaders headers_;
};

} // namespace zelto
