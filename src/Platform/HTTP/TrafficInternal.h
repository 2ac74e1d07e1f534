#pragma once

// Internal to the transport.

#include <cstddef>

namespace zelto {

void countMovedBytes(std::size_t count);
void countRoutedRequest();

} // namespace zelto
