#pragma once

#include <Platform/Enum.h>

#include <filesystem>
#include <string>

namespace zelto {

enum class StorageErrorCode {
    foreignOwner,  // the directory or a file belongs to another user
    openToOthers,  // the directory lets others in, and holds things that are not ours to close
    cannotAccess,  // the system refuses: rights, a read-only disk, no directory
    noSpace,       // or the quota is used up
    busy,          // another process has held the file for five seconds
    damaged,       // no account storage, or one that is cut or changed; nothing was written to it
    newerVersion,  // made by a later version of this program
    moved,         // the file was removed or replaced while it was open
    recordDamaged, // one account cannot be read; the others can, and it stays as it is
    notEncodable,  // an account that has no JSON: text in it is not UTF-8
};
ZELTO_ENUM(StorageErrorCode);

// Why accounts could not be read or kept.
struct StorageError {
    StorageErrorCode code = StorageErrorCode::cannotAccess;
    std::filesystem::path path; // the file or directory
    std::string detail;         // the system's or SQLite's words; never what a record holds

    static StorageError fromSystem(int systemNumber, std::filesystem::path path);

    // What is wrong, where, and what to do about it. The path may hold any characters.
    std::string message() const;

    bool operator==(const StorageError&) const = default;
};

} // namespace zelto
