#pragma once

// For the transport alone: the head of an answer, taken in line by line.

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

    // A status line begins a new head, as after an informational one. `complete` is given once, for the blank
    // line of the answer proper; what comes behind it (trailers) is left out.
    Progress take(std::string_view line);

    bool isComplete() const { return isComplete_; }

    int status() const { return status_; }

    const HTTPHeaders& headers() const { return headers_; }

    // Leaves none.
    HTTPHeaders takeHeaders() { return std::exchange(headers_, {}); }

    // Of the body as it comes over the wire.
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
