#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace zelto {

// A value that can be replaced at any time, even while another thread uses it.
template <class T> class Replaceable {
  public:
    explicit Replaceable(T value = {}) { *this = std::move(value); }

    Replaceable& operator=(T value) {
        const std::lock_guard guard(lock_);
        value_ = std::make_shared<const T>(std::move(value));
        return *this;
    }

    std::shared_ptr<const T> get() const {
        const std::lock_guard guard(lock_);
        return value_;
    }

  private:
    mutable std::mutex lock_;
    std::shared_ptr<const T> value_;
};

} // namespace zelto
