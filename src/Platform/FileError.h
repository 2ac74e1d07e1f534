#pragma once

#include <Platform/Enum.h>

#include <filesystem>
#include <string>

namespace zelto {

enum class FileErrorCode {
    notFound,
    noPermission,
    noSpace, // or the user's quota is used up
    alreadyExists,
    isDirectory,
    notDirectory,
    symbolicLink, // where links are not followed
    nameTooLong,
    readOnly,
    tooLarge, // beyond the caller's limit
    tooManyOpenFiles,
    other,
};

ZELTO_ENUM(FileErrorCode);

// What went wrong with a file operation.
struct FileError {
    FileErrorCode code = FileErrorCode::other;
    int systemNumber = 0; // errno; 0 if the error did not come from the system
    std::filesystem::path path;

    static FileError fromSystem(int systemNumber, std::filesystem::path path);

    // One sentence that contains the path, such as "'/a/b' does not exist". The path may contain any
    // characters.
    std::string message() const;

    bool operator==(const FileError&) const = default;
};

} // namespace zelto
