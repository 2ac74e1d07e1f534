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

// The disk space that all bodies share. Any thread.
class SpoolSpace {
  public:
    explicit SpoolSpace(std::uint64_t limit) : limit_(limit) {}

    // False if there is not enough left.
    bool take(std::uint64_t bytes);
    void giveBack(std::uint64_t bytes);

    std::uint64_t used() const { return used_; }

  private:
    const std::uint64_t limit_;
    std::atomic<std::uint64_t> used_ = 0;
};

// A whole body, which never changes: a short one is in memory, a longer one in a file without a name, which
// is removed with the last owner. Any thread.
class SpooledBytes {
  public:
    explicit SpooledBytes(std::string text) : text_(std::move(text)), size_(text_.size()) {}

    SpooledBytes(FileDescriptor file, std::uint64_t size, std::shared_ptr<SpoolSpace> space)
        : file_(std::move(file)), size_(size), space_(std::move(space)) {}

    ~SpooledBytes();
    SpooledBytes(const SpooledBytes&) = delete;
    SpooledBytes& operator=(const SpooledBytes&) = delete;

    std::uint64_t size() const { return size_; }

    // Fills the buffer from the offset on; fewer bytes only at the end, or when reading fails.
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
    // Its beginning, at most `limit` bytes.
    std::string text(std::size_t limit) const;
};

enum class SpoolError {
    noRoom, // the sandbox's limit is reached
    failed, // writing to the disk failed
};

// Stores a body, piece by piece.
class SpoolWriter {
  public:
    explicit SpoolWriter(std::shared_ptr<SpoolSpace> space) : space_(std::move(space)) {}

    ~SpoolWriter();
    SpoolWriter(const SpoolWriter&) = delete;
    SpoolWriter& operator=(const SpoolWriter&) = delete;

    Result<void, SpoolError> append(std::string_view bytes);

    // Once, at the end.
    std::shared_ptr<const SpooledBytes> finish();

    // Drops what was stored and returns its space.
    void discard();

  private:
    Result<void, SpoolError> write(std::string_view bytes);

    std::shared_ptr<SpoolSpace> space_;
    std::string text_; // until there is a file
    FileDescriptor file_;
    std::uint64_t written_ = 0;
};

} // namespace zelto::sandbox
