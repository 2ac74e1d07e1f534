#pragma once

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// The room on the disk that all bodies share. Any thread.
class SpoolSpace {
  public:
    explicit SpoolSpace(std::uint64_t limit) : limit_(limit) {}

    // False if so much is not left.
    bool take(std::uint64_t bytes);
    void giveBack(std::uint64_t bytes);

    std::uint64_t used() const { return used_; }

  private:
    const std::uint64_t limit_;
    std::atomic<std::uint64_t> used_ = 0;
};

// A whole body, never changed: a short one lies in memory, another in a file without a name that goes with
// the last who holds it. Any thread.
class SpooledBytes {
  public:
    explicit SpooledBytes(std::string text) : text_(std::move(text)), size_(text_.size()) {}

    SpooledBytes(FileDescriptor file, std::uint64_t size, std::shared_ptr<SpoolSpace> space)
        : file_(std::move(file)), size_(size), space_(std::move(space)) {}

    ~SpooledBytes();
    SpooledBytes(const SpooledBytes&) = delete;
    SpooledBytes& operator=(const SpooledBytes&) = delete;

    std::uint64_t size() const { return size_; }

    // So many bytes as there are from the offset; fewer only at the end, or when the disk fails.
    std::size_t read(std::uint64_t offset, std::span<char> buffer) const;

  private:
    std::string text_;
    FileDescriptor file_;
    std::uint64_t size_;
    std::shared_ptr<SpoolSpace> space_;
};

// A part of a body: a file of a form, for one.
struct SpoolRange {
    std::shared_ptr<const SpooledBytes> bytes;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;

    static SpoolRange all(std::shared_ptr<const SpooledBytes> bytes);

    std::size_t read(std::uint64_t position, std::span<char> buffer) const;
    // Its beginning, so many bytes at the most.
    std::string text(std::size_t limit) const;
};

enum class SpoolError {
    noRoom, // the sandbox holds as much as it may
    failed, // the disk does not take it
};

// Takes a body in, piece by piece.
class SpoolWriter {
  public:
    explicit SpoolWriter(std::shared_ptr<SpoolSpace> space) : space_(std::move(space)) {}

    ~SpoolWriter();
    SpoolWriter(const SpoolWriter&) = delete;
    SpoolWriter& operator=(const SpoolWriter&) = delete;

    Result<void, SpoolError> append(std::string_view bytes);

    // Once, at the end.
    std::shared_ptr<const SpooledBytes> finish();

    // Gives up what was taken, and its room.
    void discard();

  private:
    Result<void, SpoolError> write(std::string_view bytes);

    std::shared_ptr<SpoolSpace> space_;
    std::string text_; // until there is a file
    FileDescriptor file_;
    std::uint64_t written_ = 0;
};

} // namespace zelto::sandbox
