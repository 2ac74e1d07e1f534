#pragma once

#include <expected>
#include <utility>

namespace zelto {

// A value or a typed error. T may be void.
template <class T, class E> using Result = std::expected<T, E>;

template <class E> std::unexpected<std::decay_t<E>> failure(E&& error) {
    return std::unexpected<std::decay_t<E>>(std::forward<E>(error));
}

} // namespace zelto
