#include <ZeltoHost/Process/FileDescriptor.h>

#include <unistd.h>

namespace zelto {

void FileDescriptor::reset() noexcept {
    if (number_ >= 0) {
        ::close(std::exchange(number_, -1));
    }
}

} // namespace zelto
