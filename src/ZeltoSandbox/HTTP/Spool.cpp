#include <ZeltoSandbox/HTTP/Spool.h>

#include <Platform/FileManager.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumInMemory = std::size_t{256} << 10;

// A file without a name from the start, so that none is left behind whatever happens.
Result<FileDescriptor, SpoolError> namelessFile() {
    const auto path = FileManager::temporaryPath("body");
    if (!path) {
        return failure(SpoolError::failed);
    }
    auto file = FileManager::openFile(*path, O_RDWR | O_CREAT | O_EXCL);
    std::error_code ignored;
    std::filesystem::remove_all(path->parent_path(), ignored);
    if (!file) {
        return failure(SpoolError::failed);
    }
    return std::move(*file);
}

} // namespace

bool SpoolSpace::take(std::uint64_t bytes) {
    auto used = used_.load();
    do {
        if (bytes > limit_ - std::min(used, limit_)) {
            return false;
        }
    } while (!used_.compare_exchange_weak(used, used + bytes));
    return true;
}

void SpoolSpace::giveBack(std::uint64_t bytes) {
    used_ -= bytes;
}

SpooledBytes::~SpooledBytes() {
    if (space_) {
        space_->giveBack(size_);
    }
}

std::size_t SpooledBytes::read(std::uint64_t offset, std::span<char> buffer) const {
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), size_ - std::min(offset, size_)));
    if (!file_) {
        std::copy_n(text_.data() + offset, count, buffer.data());
        return count;
    }
    std::size_t done = 0;
    while (done < count) {
        const auto got =
            ::pread(file_.number(), buffer.data() + done, count - done, static_cast<off_t>(offset + done));
        if (got <= 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

SpoolRange SpoolRange::all(std::shared_ptr<const SpooledBytes> bytes) {
    const auto size = bytes->size();
    return {std::move(bytes), 0, size};
}

std::size_t SpoolRange::read(std::uint64_t position, std::span<char> buffer) const {
    const auto left = size - std::min(position, size);
    return bytes->read(offset + position,
                       buffer.first(static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), left))));
}

std::string SpoolRange::text(std::size_t limit) const {
    std::string text(static_cast<std::size_t>(std::min<std::uint64_t>(size, limit)), '\0');
    text.resize(read(0, text));
    return text;
}

SpoolWriter::~SpoolWriter() {
    discard();
}

void SpoolWriter::discard() {
    text_.clear();
    file_ = FileDescriptor();
    space_->giveBack(std::exchange(written_, 0));
}

Result<void, SpoolError> SpoolWriter::append(std::string_view bytes) {
    if (!file_) {
        if (text_.size() + bytes.size() <= maximumInMemory) {
            text_ += bytes;
            return {};
        }
        auto file = namelessFile();
        if (!file) {
            return failure(file.error());
        }
        file_ = std::move(*file);
        if (auto written = write(std::exchange(text_, {})); !written) {
            return written;
        }
    }
    return write(bytes);
}

Result<void, SpoolError> SpoolWriter::write(std::string_view bytes) {
    if (!space_->take(bytes.size())) {
        return failure(SpoolError::noRoom);
    }
    written_ += bytes.size();
    if (!FileManager::writeAll(file_, bytes, "body")) {
        return failure(SpoolError::failed);
    }
    return {};
}

std::shared_ptr<const SpooledBytes> SpoolWriter::finish() {
    if (!file_) {
        return std::make_shared<SpooledBytes>(std::move(text_));
    }
    return std::make_shared<SpooledBytes>(std::move(file_), std::exchange(written_, 0), space_);
}

} // namespace zelto::sandbox
