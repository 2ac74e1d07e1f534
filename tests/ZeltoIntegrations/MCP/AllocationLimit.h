#pragma once

#include <cstddef>

namespace zelto {

// While one lives, larger allocations of this thread fail with std::bad_alloc. One at a time.
class AllocationLimit {
  public:
    explicit AllocationLimit(std::size_t largest);
    ~AllocationLimit();
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
};

} // namespace zelto
