#include "base/PreparedFolder.h"

#include "base/FileFailure.h"

#include <cerrno>
#include <unistd.h>

namespace zelto::cli {

Outcome<void> prepareFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        return failure(failureOf(FileError::fromSystem(error.value(), folder)));
    }
    if (::access(folder.c_str(), W_OK | X_OK) != 0) {
        return failure(failureOf(FileError::fromSystem(errno, folder)));
    }
    return {};
}

} // namespace zelto::cli
