#pragma once

#include <Platform/Date.h>
#include <Platform/HTTP/URLError.h>
#include <Platform/URL.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace zelto {

// A task of a session that has ended.
struct TransferRecord {
    std::string method;
    URL url;                           // that was asked for; its query may hold secrets
    std::optional<int> status = {};    // of the response, where one began
    std::optional<URLErrorCode> error; // why there is no whole response
    TimeInterval duration{0};          // since the task was resumed
    std::uint64_t requestSize = 0;     // bytes of the body, sent or not
    std::uint64_t responseSize = 0;    // bytes that came of the body, decoded
};

// Called for each task of the process that was made after this, just before its own completion and on the
// same queue. Null for none; any thread. What an observer throws is dropped.
void setTransferObserver(std::function<void(const TransferRecord&)> observer);

} // namespace zelto
