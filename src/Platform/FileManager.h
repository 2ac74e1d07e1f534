#pragma once

#include <Platform/Data.h>
#include <Platform/FileDescriptor.h>
#include <Platform/FileError.h>
#include <Platform/Result.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

namespace zelto {

// File operations. Any thread.
struct FileManager {
    // The process's own directory, of mode 0700, below $TMPDIR or /tmp. It is created when first asked for,
    // and removed with its content when the process ends by exit or by returning from main. A forked child
    // gets its own. If someone has removed it, it is created again. Creating it also removes the directories
    // of this user's processes that were killed.
    static Result<std::filesystem::path, FileError> temporaryDirectory();

    // A path for a file of that name in a fresh, empty folder of the temporary directory. The last component
    // is the given name, but "/" and NUL become "_", "." and ".." become "_" and "__", an empty name becomes
    // "_", and a name too long for the file system loses characters before its extension.
    static Result<std::filesystem::path, FileError> temporaryPath(std::string_view name);

    static constexpr std::uint64_t noLimit = std::numeric_limits<std::uint64_t>::max();

    // The whole content of a file or pipe; `tooLarge` if it exceeds the limit.
    static Result<Data, FileError> readFile(const std::filesystem::path& path, std::uint64_t limit = noLimit);

    // The same for an open file, from its beginning.
    static Result<Data, FileError> readAll(const FileDescriptor& file, const std::filesystem::path& path,
                                           std::uint64_t limit = noLimit);

    // Reads what comes next of an open file; 0 bytes at its end.
    static Result<std::size_t, FileError> readSome(const FileDescriptor& file, std::span<char> buffer,
                                                   const std::filesystem::path& path);

    // Where the user's programs keep data: $XDG_DATA_HOME if it is an absolute path, else ~/.local/share.
    static std::filesystem::path userDataDirectory();

    // Readers see the old content or the new, never a part of it, also after a crash: the content is written
    // to a file beside it, whose name begins with ".zelto-", flushed to the disk and renamed. After an error
    // the old file is untouched and no temporary file remains. The new file has the given mode, whatever the
    // umask; a symbolic link at the path is replaced, not followed.
    static Result<void, FileError> writeFileAtomically(const std::filesystem::path& path,
                                                       std::string_view bytes, unsigned mode = 0600);
    static Result<void, FileError> writeFileAtomically(const std::filesystem::path& path, const Data& bytes,
                                                       unsigned mode = 0600);

    // Opens as open(2) does, with O_CLOEXEC added.
    static Result<FileDescriptor, FileError> openFile(const std::filesystem::path& path, int flags,
                                                      unsigned mode = 0600);

    // Creates a new file for writing; `alreadyExists` if the name is taken, even by a symbolic link.
    static Result<FileDescriptor, FileError> createFile(const std::filesystem::path& path,
                                                        unsigned mode = 0600);

    // Writes everything, continuing after interruptions and partial writes.
    static Result<void, FileError> writeAll(const FileDescriptor& file, std::string_view bytes,
                                            const std::filesystem::path& path);

    // Flushes an open file to the disk: what a full disk or a quota refuses late is an error here.
    static Result<void, FileError> syncFile(const FileDescriptor& file, const std::filesystem::path& path);

    // Renames a file within its file system; `alreadyExists` if the new name is taken, even by a symbolic
    // link. Whoever else takes the name at the same moment is not replaced either.
    static Result<void, FileError> moveWithoutReplacing(const std::filesystem::path& from,
                                                        const std::filesystem::path& to);

    // Flushes a directory to the disk, and with it what was created, renamed and removed in it, where its
    // file system can.
    static Result<void, FileError> syncDirectory(const std::filesystem::path& directory);
};

} // namespace zelto
