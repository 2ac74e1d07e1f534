#pragma once

#include <Platform/Data.h>
#include <Platform/FileDescriptor.h>
#include <Platform/FileError.h>
#include <Platform/Result.h>

#include <cstdint>
#include <limits>
#include <string_view>

namespace zelto {

// What the system does with files. Any thread.
struct FileManager {
    // The process's own directory of mode 0700 below $TMPDIR or /tmp, made when first asked for and removed,
    // with all that is in it, when the process ends by exit or by returning from main. A forked child gets
    // one of its own. It is made anew if someone has removed it. Those that processes of this user left when
    // they were killed are removed when one is made.
    static Result<std::filesystem::path, FileError> temporaryDirectory();

    // A path for a file of that name in a fresh, empty folder of the temporary directory. Its last component
    // is the name as told, but "/" and NUL become "_" in it, "." and ".." become "_" and "__", an empty name
    // becomes "_", and one too long for the file system loses characters before its extension.
    static Result<std::filesystem::path, FileError> temporaryPath(std::string_view name);

    static constexpr std::uint64_t noLimit = std::numeric_limits<std::uint64_t>::max();

    // The whole of a file or pipe; tooLarge if there is more than the limit in it.
    static Result<Data, FileError> readFile(const std::filesystem::path& path, std::uint64_t limit = noLimit);

    // The same of a file that is open, at its beginning.
    static Result<Data, FileError> readAll(const FileDescriptor& file, const std::filesystem::path& path,
                                           std::uint64_t limit = noLimit);

    // Where the user's programs keep data: $XDG_DATA_HOME where it is an absolute path, else the place that
    // it stands for, ~/.local/share.
    static std::filesystem::path userDataDirectory();

    // Readers see the old content or the new, never a part, also after a crash: written beside the file under
    // a name that begins with ".zelto-", brought to the disk, then renamed. After an error the old file is
    // untouched and nothing is left beside it. The new file has the given mode, whatever the umask; a
    // symbolic link at the path is replaced, not followed.
    static Result<void, FileError> writeFileAtomically(const std::filesystem::path& path,
                                                       std::string_view bytes, unsigned mode = 0600);
    static Result<void, FileError> writeFileAtomically(const std::filesystem::path& path, const Data& bytes,
                                                       unsigned mode = 0600);

    // Opens as open(2) does, O_CLOEXEC added.
    static Result<FileDescriptor, FileError> openFile(const std::filesystem::path& path, int flags,
                                                      unsigned mode = 0600);

    // Makes a new file for writing: alreadyExists if the name is taken, be it by a symbolic link.
    static Result<FileDescriptor, FileError> createFile(const std::filesystem::path& path,
                                                        unsigned mode = 0600);

    // Writes all of it, going on after interruptions and partial writes.
    static Result<void, FileError> writeAll(const FileDescriptor& file, std::string_view bytes,
                                            const std::filesystem::path& path);

    // Brings to the disk what was made, renamed and removed in a directory, where its file system can.
    static Result<void, FileError> syncDirectory(const std::filesystem::path& directory);
};

} // namespace zelto
