#include <Platform/FileError.h>

#include <Platform/EnumDescription.h>

#include <cerrno>
#include <system_error>

namespace zelto {

ZELTO_DESCRIBE_ENUM(FileErrorCode, notFound, noPermission, noSpace, alreadyExists, isDirectory, notDirectory,
                    symbolicLink, nameTooLong, readOnly, tooLarge, tooManyOpenFiles, other);

namespace {

FileErrorCode codeOf(int systemNumber) {
    switch (systemNumber) {
    case ENOENT:
        return FileErrorCode::notFound;
    case EACCES:
    case EPERM:
        return FileErrorCode::noPermission;
    case ENOSPC:
    case EDQUOT:
        return FileErrorCode::noSpace;
    case EEXIST:
        return FileErrorCode::alreadyExists;
    case EISDIR:
        return FileErrorCode::isDirectory;
    case ENOTDIR:
        return FileErrorCode::notDirectory;
    case ELOOP:
        return FileErrorCode::symbolicLink;
    case ENAMETOOLONG:
        return FileErrorCode::nameTooLong;
    case EROFS:
        return FileErrorCode::readOnly;
    case EFBIG:
        return FileErrorCode::tooLarge;
    case EMFILE:
    case ENFILE:
        return FileErrorCode::tooManyOpenFiles;
    default:
        return FileErrorCode::other;
    }
}

const char* sentenceEnd(FileErrorCode code) {
    switch (code) {
    case FileErrorCode::notFound:
        return "does not exist";
    case FileErrorCode::noPermission:
        return "may not be used: permission denied";
    case FileErrorCode::noSpace:
        return "could not be written: no space left";
    case FileErrorCode::alreadyExists:
        return "exists already";
    case FileErrorCode::isDirectory:
        return "is a directory";
    case FileErrorCode::notDirectory:
        return "leads through something that is no directory";
    case FileErrorCode::symbolicLink:
        return "is or leads through a symbolic link that is not followed";
    case FileErrorCode::nameTooLong:
        return "has too long a name";
    case FileErrorCode::readOnly:
        return "lies on a read-only file system";
    case FileErrorCode::tooLarge:
        return "is too large";
    case FileErrorCode::tooManyOpenFiles:
        return "could not be opened: too many open files";
    case FileErrorCode::other:
        return "could not be used";
    }
    return "";
}

} // namespace

FileError FileError::fromSystem(int systemNumber, std::filesystem::path path) {
    return {codeOf(systemNumber), systemNumber, std::move(path)};
}

std::string FileError::message() const {
    auto text = "'" + path.native() + "' " + sentenceEnd(code);
    if (code == FileErrorCode::other && systemNumber != 0) {
        text += ": " + std::system_category().message(systemNumber);
    }
    return text;
}

} // namespace zelto
