#include <Platform/FileManager.h>
#include <ZeltoHost/Mail/MailFile.h>
#include <ZeltoHost/Mail/MailFileErrorInternal.h>
#include <ZeltoHost/Process/StopSignalInternal.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto {

namespace {

// False if a stop is asked for first.
bool waitForInput(int descriptor, const StopSignal& stop) {
    std::array<pollfd, 2> awaited{{{descriptor, POLLIN, 0}, {stop.descriptor(), POLLIN, 0}}};
    while (::poll(awaited.data(), awaited.size(), -1) < 0 && errno == EINTR) {
    }
    return awaited[1].revents == 0;
}

} // namespace

MailFile::MailFile(FileDescriptor file, std::uint64_t size, timespec modified)
    : file_(std::move(file)), size_(size), modified_(modified) {}

Result<std::shared_ptr<const MailFile>, MailError> MailFile::open(const std::filesystem::path& path) {
    auto file = FileManager::openFile(path, O_RDONLY | O_NOCTTY);
    if (!file) {
        const bool missing =
            file.error().code == FileErrorCode::notFound || file.error().code == FileErrorCode::notDirectory;
        return failure(missing ? MailError::notFound : MailError::unreadable);
    }

    struct stat status {};

    if (::fstat(file->number(), &status) != 0) {
        return failure(MailError::unreadable);
    }
    if (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode)) {
        const auto spooled = spool(file->number());
        return spooled ? open(*spooled) : failure(spooled.error());
    }
    if (!S_ISREG(status.st_mode)) {
        return failure(MailError::unreadable);
    }
    return std::shared_ptr<const MailFile>(
        new MailFile(std::move(*file), static_cast<std::uint64_t>(status.st_size), status.st_mtim));
}

Result<void, MailError> MailFile::read(std::uint64_t offset, std::span<char> buffer) const {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const auto count = ::pread(file_.number(), buffer.data() + filled, buffer.size() - filled,
                                   static_cast<off_t>(offset + filled));
        if (count == 0) {
            return failure(MailError::changed);
        }
        if (count < 0 && errno != EINTR) {
            return failure(MailError::unreadable);
        }
        filled += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return {};
}

bool MailFile::isUnchanged() const {
    struct stat status {};

    return ::fstat(file_.number(), &status) == 0 && static_cast<std::uint64_t>(status.st_size) == size_ &&
           status.st_mtim.tv_sec == modified_.tv_sec && status.st_mtim.tv_nsec == modified_.tv_nsec;
}

Result<std::filesystem::path, MailError> spool(int descriptor, const std::stop_token& stop) {
    const StopSignal stopSignal(stop);
    const auto path = FileManager::temporaryPath("message");
    if (!path) {
        return failure(writeErrorOf(path.error()));
    }
    const auto file = FileManager::createFile(*path);
    if (!file) {
        return failure(writeErrorOf(file.error()));
    }
    const auto giveUp = [&](MailError error) {
        std::error_code ignored;
        std::filesystem::remove(*path, ignored);
        return failure(error);
    };
    std::array<char, 64U << 10> buffer;
    while (true) {
        if (!waitForInput(descriptor, stopSignal)) {
            return giveUp(MailError::canceled);
        }
        const auto count = ::read(descriptor, buffer.data(), buffer.size());
        if (count == 0) {
            return *path;
        }
        if (count < 0 && errno != EINTR && errno != EAGAIN) {
            return giveUp(MailError::unreadable);
        }
        const auto bytes = std::string_view(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
        if (auto written = FileManager::writeAll(*file, bytes, *path); !written) {
            return giveUp(writeErrorOf(written.error()));
        }
    }
}

} // namespace zelto
