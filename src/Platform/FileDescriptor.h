#pragma once

#include <utility>

namespace zelto {

// Owns an open file descriptor and closes it.
class FileDescriptor {
  public:
    FileDescriptor() = default;

    explicit FileDescriptor(int number) : number_(number) {}

    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    ~FileDescriptor();

    explicit operator bool() const { return number_ >= 0; }

    int number() const { return number_; }

  private:
    int number_ = -1;
};

} // namespace zelto
