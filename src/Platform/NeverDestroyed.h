#pragma once

#include <utility>

namespace zelto {

// Keeps a static or a constant until the process has ended: threads may still read it while exit() runs
// destructors. Any thread may read the value.
template <class Value> const Value& neverDestroyed(Value value) {
    return *new Value(std::move(value));
}

} // namespace zelto
