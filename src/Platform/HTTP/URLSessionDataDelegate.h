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

// Hears of the tasks of a session as they go on. For each task in this order: at most one response, data any
// number of times, one completion; all on the session's delegate queue, one call at a time. A delegate may
// resume and cancel tasks in every call. While it works through data, the transfer is held back: an endless
// answer does not pile up in memory.
class URLSessionDataDelegate {
  public:
    virtual ~URLSessionDataDelegate() = default;

    // The head of the answer has come. `cancel` ends the task with `cancelled`.
    virtual URLSessionResponseDisposition
    didReceiveResponse(URLSessionDataTask& task, const std::shared_ptr<const URLResponse>& response) = 0;

    // A piece of the body, after decompression. The bytes are valid during the call.
    virtual void didReceiveData(URLSessionDataTask& task, std::span<const std::uint8_t> data) = 0;

    // Nothing more comes. Without an error the answer is whole.
    virtual void didComplete(URLSessionDataTask& task, const std::optional<URLError>& error) = 0;
};

} // namespace zelto
