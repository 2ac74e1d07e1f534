#pragma once

#include <cstdint>

namespace zelto {

// How many bytes of requests' bodies, of heads and of responses' bodies (decoded) this process has moved over
// HTTP, for whoever wants to know whether anything still moves. Any thread.
std::uint64_t movedByteCount();

} // namespace zelto
