#pragma once

#include <Platform/Enum.h>

#include <filesystem>
#include <string>

namespace zelto {

enum class StorageErrorCode {
    foreignOwner,  // the directory or a file belongs to another user
    openToOthers,  // others have access to the directory, and it contains files that are not ours
    cannotAccess,  // refused by the system: permissions, no directory
    noSpace,       // or the quota is used up
    readOnly,      // the disk is mounted so
    busy,          // another process has locked the file for five seconds
    damaged,       // not an account storage, or a truncated or changed one; it was not written to
    newerVersion,  // made by a later version of this program
    moved,         // the file was removed or replaced while it was open
    recordDamaged, // an account cannot be read; the others can, and it stays as it is
    notEncodable,  // an account without JSON: a text in it is not UTF-8
};
ZELTO_ENUM(StorageErrorCode);

// Why accounts could not be read or stored.
struct StorageError {
    StorageErrorCode code = StorageErrorCode::cannotAccess;
    std::filesystem::path path; // the file or directory
    std::string detail;         // the system's or SQLite's text; never the content of a record

    static StorageError fromSystem(int systemNumber, std::filesystem::path path);

    // What is wrong, where, and what to do about it. The path may contain any characters.
    std::string message() const;

    bool operator==(const StorageError&) const = default;
};

} // namespace zelto
