#pragma once

#include <Platform/HTTP/URLError.h>
#include <Platform/HTTP/URLResponse.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace zelto {

class URLSessionDataTask;

enum class URLSessionResponseDisposition { cancel, allow };

// Receives the events of a session's tasks. For each task, in this order: at most one response, data any
// number of times, one completion; all on the session's delegate queue, one call at a time. A delegate may
// resume and cancel tasks in every call. While it is busy with data, the transfer is paused, so that an
// endless response does not fill the memory.
class URLSessionDataDelegate {
  public:
    virtual ~URLSessionDataDelegate() = default;

    // The head of the response has arrived. `cancel` ends the task with `cancelled`.
    virtual URLSessionResponseDisposition
    didReceiveResponse(URLSessionDataTask& task, const std::shared_ptr<const URLResponse>& response) = 0;

    // A piece of the body, after decompression. The bytes are valid during the call.
    virtual void didReceiveData(URLSessionDataTask& task, std::span<const std::uint8_t> data) = 0;

    // The last event. Without an error the response is complete.
    virtual void didComplete(URLSessionDataTask& task, const std::optional<URLError>& error) = 0;
};

} // namespace zelto
