#pragma once

#include <ZeltoSandbox/HTTP/SandboxRequest.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// Why a request is refused: the response before the connection ends.
struct RequestProblem {
    int status = 400;
    std::string text;
};

// Reads one request of HTTP/1.1 from bytes as they come: its head first, then its body.
class RequestParser {
  public:
    RequestParser(std::size_t maximumHeader, std::uint64_t maximumBody);
    ~RequestParser();
    RequestParser(const RequestParser&) = delete;
    RequestParser& operator=(const RequestParser&) = delete;

    // Parses from the front of the bytes and returns the count; the remaining ones are to be given again,
    // with those that follow. Stops at the head's end, so that the body can be refused.
    std::size_t putHead(std::string_view bytes);
    // The same for the body.
    std::size_t putBody(std::string_view bytes, SpoolWriter& body);

    bool headIsWhole() const;
    bool isWhole() const;
    const std::optional<RequestProblem>& problem() const;
    RequestHead& head();

  private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace zelto::sandbox
