#pragma once

#include <Platform/Data.h>
#include <Platform/Result.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zelto {

enum class HTTPBodyError {
    fileTooShort, // a file has become shorter since it was appended
    fileUnreadable,
    fileChanged, // another file, or other bytes, are at the path of a file that is opened again
};

// The bytes of a message body as a list of segments: texts in memory, and files that are read while the body
// is sent, as they are or as Base64. The length is fixed when a segment is appended: a file that has
// grown gives only its first bytes, one that has shrunk gives an error. Copies share their segments and cost
// no memory; several threads may read copies of one body.
class HTTPBody {
  public:
    HTTPBody() = default;
    explicit HTTPBody(std::string text);
    explicit HTTPBody(const Data& data);

    void append(std::string text);
    void append(const HTTPBody& other);

    // The file is opened here and stays open as long as a copy of the body lives, so replacing or removing it
    // has no effect. False, with nothing appended, if it cannot be opened or is not a regular file.
    [[nodiscard]] bool appendFile(const std::filesystem::path& path);

    // The same for a body of many files: none stays open. Each is opened again whenever a piece of it is
    // read, and has to be there unchanged until the body was sent; else reading fails.
    [[nodiscard]] bool appendFileToReopen(const std::filesystem::path& path);

    // Appends the file's bytes as Base64 without line breaks.
    [[nodiscard]] bool appendFileAsBase64(const std::filesystem::path& path);

    std::uint64_t size() const { return size_; }

    bool empty() const { return size_ == 0; }

    // The whole body in memory.
    Result<Data, HTTPBodyError> bytes() const;

    // Reads a body from beginning to end. Holds the segments itself; one thread at a time.
    class Reader;

  private:
    class Segment;
    class TextSegment;
    class FileSegment;
    class ReopenedFileSegment;
    class Base64FileSegment;

    void append(std::shared_ptr<const Segment> segment);

    std::vector<std::shared_ptr<const Segment>> segments_;
    std::uint64_t size_ = 0;
};

class HTTPBody::Reader {
  public:
    explicit Reader(HTTPBody body) : body_(std::move(body)) {}

    // Fills as much of the buffer as it can and gives the number of bytes; 0 is the end. After an error the
    // position is unchanged.
    Result<std::size_t, HTTPBodyError> read(std::span<std::uint8_t> buffer);

    // For sending the body again after a redirect or a second attempt.
    void rewind();

  private:
    HTTPBody body_;
    std::size_t segment_ = 0;
    std::uint64_t offset_ = 0; // within the current segment
};

} // namespace zelto
