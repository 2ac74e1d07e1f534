#include <Platform/HTTP/HTTPBody.h>

#include <Platform/Base64.h>
#include <Platform/FileManager.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto {

namespace {

// Larger than the maximum of any file system, and small enough that the sum of a body's segments is a valid
// file offset.
constexpr std::uint64_t maximumFileSize = std::uint64_t{1} << 53;

// Tells a file from another one that has taken its path since, and from itself before a change.
struct FileVersion {
    dev_t device;
    ino_t number;
    std::int64_t changedSeconds;
    std::int64_t changedNanoseconds;

    bool operator==(const FileVersion&) const = default;
};

class OpenFile {
  public:
    // Null if it cannot be opened or is not a regular file; does not wait for the other end of a pipe.
    static std::shared_ptr<const OpenFile> open(const std::filesystem::path& path) {
        auto descriptor = FileManager::openFile(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
        struct stat status = {};
        if (!descriptor || ::fstat(descriptor->number(), &status) != 0 || !S_ISREG(status.st_mode)) {
            return nullptr;
        }
        const auto size = static_cast<std::uint64_t>(status.st_size);
        if (size > maximumFileSize) {
            return nullptr;
        }
        const auto& changed = status.st_mtim;
        return std::make_shared<OpenFile>(
            std::move(*descriptor), size,
            FileVersion{status.st_dev, status.st_ino, changed.tv_sec, changed.tv_nsec});
    }

    OpenFile(FileDescriptor descriptor, std::uint64_t size, const FileVersion& version)
        : descriptor_(std::move(descriptor)), size_(size), version_(version) {}

    std::uint64_t size() const { return size_; }

    const FileVersion& version() const { return version_; }

    // Fills the whole buffer.
    Result<void, HTTPBodyError> read(std::uint64_t offset, std::span<std::uint8_t> buffer) const {
        while (!buffer.empty()) {
            const auto count =
                ::pread(descriptor_.number(), buffer.data(), buffer.size(), static_cast<off_t>(offset));
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count <= 0) {
                return failure(count == 0 ? HTTPBodyError::fileTooShort : HTTPBodyError::fileUnreadable);
            }
            offset += static_cast<std::uint64_t>(count);
            buffer = buffer.subspan(static_cast<std::size_t>(count));
        }
        return {};
    }

  private:
    FileDescriptor descriptor_;
    std::uint64_t size_;
    FileVersion version_;
};

} // namespace

class HTTPBody::Segment {
  public:
    virtual ~Segment() = default;

    virtual std::uint64_t size() const = 0;

    // Fills the whole buffer; the caller never reads past the end.
    virtual Result<void, HTTPBodyError> read(std::uint64_t offset, std::span<std::uint8_t> buffer) const = 0;
};

class HTTPBody::TextSegment final : public Segment {
  public:
    explicit TextSegment(std::string text) : text_(std::move(text)) {}

    std::uint64_t size() const override { return text_.size(); }

    Result<void, HTTPBodyError> read(std::uint64_t offset, std::span<std::uint8_t> buffer) const override {
        std::memcpy(buffer.data(), text_.data() + offset, buffer.size());
        return {};
    }

  private:
    std::string text_;
};

class HTTPBody::FileSegment final : public Segment {
  public:
    explicit FileSegment(std::shared_ptr<const OpenFile> file) : file_(std::move(file)) {}

    std::uint64_t size() const override { return file_->size(); }

    Result<void, HTTPBodyError> read(std::uint64_t offset, std::span<std::uint8_t> buffer) const override {
        return file_->read(offset, buffer);
    }

  private:
    std::shared_ptr<const OpenFile> file_;
};

// Holds no descriptor between two reads.
class HTTPBody::ReopenedFileSegment final : public Segment {
  public:
    ReopenedFileSegment(std::filesystem::path path, const OpenFile& file)
        : path_(std::move(path)), size_(file.size()), version_(file.version()) {}

    std::uint64_t size() const override { return size_; }

    Result<void, HTTPBodyError> read(std::uint64_t offset, std::span<std::uint8_t> buffer) const override {
        const auto file = OpenFile::open(path_);
        if (!file) {
            return failure(HTTPBodyError::fileUnreadable);
        }
        if (file->version() != version_) {
            return failure(HTTPBodyError::fileChanged);
        }
        return file->read(offset, buffer);
    }

  private:
    const std::filesystem::path path_;
    const std::uint64_t size_;
    const FileVersion version_;
};

class HTTPBody::Base64FileSegment final : public Segment {
  public:
    explicit Base64FileSegment(std::shared_ptr<const OpenFile> file) : file_(std::move(file)) {}

    std::uint64_t size() const override { return base64Length(file_->size()); }

    Result<void, HTTPBodyError> read(std::uint64_t offset, std::span<std::uint8_t> buffer) const override {
        while (!buffer.empty()) {
            const auto inGroup = static_cast<std::size_t>(offset % 4);
            std::size_t count = 0;
            if (inGroup == 0 && buffer.size() >= 4) {
                const auto groups = std::min(buffer.size() / 4, groupsAtOnce);
                if (const auto done = encode(offset / 4, groups, buffer.data()); !done) {
                    return done;
                }
                count = groups * 4;
            } else {
                std::array<std::uint8_t, 4> group = {};
                if (const auto done = encode(offset / 4, 1, group.data()); !done) {
                    return done;
                }
                count = std::min(4 - inGroup, buffer.size());
                std::memcpy(buffer.data(), group.data() + inGroup, count);
            }
            offset += count;
            buffer = buffer.subspan(count);
        }
        return {};
    }

  private:
    static constexpr std::size_t groupsAtOnce = 4096;

    Result<void, HTTPBodyError> encode(std::uint64_t group, std::size_t groups, std::uint8_t* text) const {
        std::array<std::uint8_t, groupsAtOnce * 3> raw;
        const auto count = std::min<std::uint64_t>(groups * 3, file_->size() - group * 3);
        const auto bytes = std::span(raw).first(static_cast<std::size_t>(count));
        if (const auto done = file_->read(group * 3, bytes); !done) {
            return done;
        }
        writeBase64(bytes, text);
        return {};
    }

    std::shared_ptr<const OpenFile> file_;
};

HTTPBody::HTTPBody(std::string text) {
    append(std::move(text));
}

HTTPBody::HTTPBody(const Data& data) : HTTPBody(std::string(viewOf(data))) {}

void HTTPBody::append(std::string text) {
    append(std::make_shared<TextSegment>(std::move(text)));
}

void HTTPBody::append(const HTTPBody& other) {
    const auto segments = other.segments_; // `other` may be this body
    for (const auto& segment : segments) {
        append(segment);
    }
}

bool HTTPBody::appendFile(const std::filesystem::path& path) {
    auto file = OpenFile::open(path);
    if (!file) {
        return false;
    }
    append(std::make_shared<FileSegment>(std::move(file)));
    return true;
}

bool HTTPBody::appendFileToReopen(const std::filesystem::path& path) {
    const auto file = OpenFile::open(path);
    if (!file) {
        return false;
    }
    append(std::make_shared<ReopenedFileSegment>(path, *file));
    return true;
}

bool HTTPBody::appendFileAsBase64(const std::filesystem::path& path) {
    auto file = OpenFile::open(path);
    if (!file) {
        return false;
    }
    append(std::make_shared<Base64FileSegment>(std::move(file)));
    return true;
}

void HTTPBody::append(std::shared_ptr<const Segment> segment) {
    if (const auto size = segment->size(); size > 0) {
        segments_.push_back(std::move(segment));
        size_ += size;
    }
}

Result<Data, HTTPBodyError> HTTPBody::bytes() const {
    Data data(size_);
    std::span<std::uint8_t> remaining = data;
    for (const auto& segment : segments_) {
        const auto size = static_cast<std::size_t>(segment->size());
        if (const auto done = segment->read(0, remaining.first(size)); !done) {
            return failure(done.error());
        }
        remaining = remaining.subspan(size);
    }
    return data;
}

Result<std::size_t, HTTPBodyError> HTTPBody::Reader::read(std::span<std::uint8_t> buffer) {
    auto segment = segment_;
    auto offset = offset_;
    std::size_t filled = 0;
    while (filled < buffer.size() && segment < body_.segments_.size()) {
        const auto& current = *body_.segments_[segment];
        const auto left = current.size() - offset;
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left, buffer.size() - filled));
        if (const auto done = current.read(offset, buffer.subspan(filled, count)); !done) {
            return failure(done.error());
        }
        filled += count;
        offset += count;
        if (offset == current.size()) {
            ++segment;
            offset = 0;
        }
    }
    segment_ = segment;
    offset_ = offset;
    return filled;
}

void HTTPBody::Reader::rewind() {
    segment_ = 0;
    offset_ = 0;
}

} // namespace zelto
