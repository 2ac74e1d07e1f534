#include "Folders.h"

namespace zelto {

std::filesystem::path sourceFolder() {
    return ZELTO_SOURCE_DIR;
}

std::filesystem::path buildFolder() {
    return ZELTO_BINARY_DIR;
}

} // namespace zelto
