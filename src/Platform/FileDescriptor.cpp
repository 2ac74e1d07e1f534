#include <Platform/FileDescriptor.h>

#include <unistd.h>

namespace zelto {

FileDescriptor::~FileDescriptor() {
    if (number_ >= 0) {
        close(number_);
    }
}

} // namespace zelto
