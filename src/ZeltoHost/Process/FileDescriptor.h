#pragma once

#include <utility>

namespace zelto {

// Owns an open file of the process.
class FileDescriptor {
  public:
    FileDescriptor() = default;

    explicit FileDescriptor(int number) noexcept : number_(number) {}

    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    ~FileDescriptor() { reset(); }

    explicit operator bool() const noexcept { return number_ >= 0; }

    int get() const noexcept { return number_; }

    void reset() noexcept;

  private:
    int number_ = -1;
};

} // namespace zelto
