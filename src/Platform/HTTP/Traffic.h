#pragma once

#include <cstdint>

namespace zelto {

// How many bytes of requests' bodies, of heads and of responses' bodies (decoded) this process has moved over
// HTTP, for whoever wants to know whether anything still moves. Any thread.
std::uint64_t movedByteCount();

// How many requests of this process have been begun that a session's route sends elsewhere. Any thread.
std::uint64_t routedRequestCount();

} // namespace zelto
