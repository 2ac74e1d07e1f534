#include <ZeltoSandbox/page/PageFiles.h>
#include <ZeltoSandbox/page/PageFilesInternal.h>

namespace zelto {

std::span<const PageFile> sandboxPageFiles() {
    return pageFiles;
}

} // namespace zelto
