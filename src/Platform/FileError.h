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
    symbolicLink, // where none is followed
    nameTooLong,
    readOnly,
    tooLarge, // beyond the limit that was told
    tooManyOpenFiles,
    other,
};

ZELTO_ENUM(FileErrorCode);

// What went wrong with a file.
struct FileError {
    FileErrorCode code = FileErrorCode::other;
    int systemNumber = 0; // errno, 0 if the system had no part in it
    std::filesystem::path path;

    static FileError fromSystem(int systemNumber, std::filesystem::path path);

    // One sentence with the path in it, such as "'/a/b' does not exist". The path may hold any characters.
    std::string message() const;

    bool operator==(const FileError&) const = default;
};

} // namespace zelto
