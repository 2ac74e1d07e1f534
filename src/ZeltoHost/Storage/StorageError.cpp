#include <ZeltoHost/Storage/StorageError.h>

#include <Platform/EnumDescription.h>

#include <cerrno>
#include <system_error>

namespace zelto {

ZELTO_DESCRIBE_ENUM(StorageErrorCode, foreignOwner, openToOthers, cannotAccess, noSpace, readOnly, busy,
                    damaged, newerVersion, moved, recordDamaged, notEncodable);

namespace {

std::string sentence(StorageErrorCode code) {
    switch (code) {
    case StorageErrorCode::foreignOwner:
        return " belongs to another user; choose a directory of your own";
    case StorageErrorCode::openToOthers:
        return " is open to other users and holds other files; choose an empty directory or close this one "
               "with chmod 700";
    case StorageErrorCode::cannotAccess:
        return " cannot be used";
    case StorageErrorCode::noSpace:
        return " cannot be written: no space left; free some and try again";
    case StorageErrorCode::readOnly:
        return " cannot be written: it is on a read-only disk; choose a directory that can be written to";
    case StorageErrorCode::busy:
        return " is in use by another process; try again";
    case StorageErrorCode::damaged:
        return " is damaged or no account storage; put back a copy of it, or move it away to start anew";
    case StorageErrorCode::newerVersion:
        return " was written by a newer version of this program; use that version or another directory";
    case StorageErrorCode::moved:
        return " was removed or replaced while it was in use; start again";
    case StorageErrorCode::recordDamaged:
        return " holds an account that cannot be read; it was left as it is";
    case StorageErrorCode::notEncodable:
        return " cannot take an account whose texts are not UTF-8";
    }
    return {};
}

StorageErrorCode codeOf(int systemNumber) {
    switch (systemNumber) {
    case ENOSPC:
    case EDQUOT:
        return StorageErrorCode::noSpace;
    case EROFS:
        return StorageErrorCode::readOnly;
    default:
        return StorageErrorCode::cannotAccess;
    }
}

} // namespace

StorageError StorageError::fromSystem(int systemNumber, std::filesystem::path path) {
    return {codeOf(systemNumber), std::move(path), std::generic_category().message(systemNumber)};
}

std::string StorageError::message() const {
    auto text = "'" + path.string() + "'" + sentence(code);
    return detail.empty() ? text : text + " (" + detail + ")";
}

} // namespace zelto
