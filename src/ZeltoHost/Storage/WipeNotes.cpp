#include <ZeltoHost/Storage/WipeNotesInternal.h>

#include <ZeltoHost/Storage/DataDirectory.h>
#include <ZeltoHost/Storage/FileLockInternal.h>

#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>
#include <Platform/FileManager.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <cerrno>
#include <system_error>

#include <sys/file.h>

namespace zelto {

ZELTO_JSON_RECORD(WipeNote, keyChain, key, date);

namespace {

constexpr auto extension = ".wipe";
constexpr std::uint64_t maximumNote = 64 * 1024;

} // namespace

// Its name says nothing of the account, which may be no file name.
std::filesystem::path WipeNotes::pathOf(const std::string& keyChain, const std::string& key) const {
    return folder_ / (base64URLEncoded(viewOf(sha256(keyChain + "\n" + key))) + extension);
}

Result<FileDescriptor, StorageError> WipeNotes::lock() const {
    if (auto prepared = prepareDataDirectory(dataDirectory_); !prepared) {
        return failure(prepared.error());
    }
    const auto path = folder_ / "lock";
    auto file = openLockFile(path);
    if (file && !lockFile(*file, LOCK_EX)) {
        return failure(StorageError::fromSystem(errno, path));
    }
    return file;
}

bool WipeNotes::has(const std::string& keyChain, const std::string& key) const {
    std::error_code ignored;
    return std::filesystem::exists(pathOf(keyChain, key), ignored);
}

Result<void, StorageError> WipeNotes::write(const WipeNote& note) const {
    const auto path = pathOf(note.keyChain, note.key);
    const auto text = JSONEncoder().encode(note);
    if (!text) {
        return failure(StorageError{StorageErrorCode::notEncodable, path, text.error().message()});
    }
    const auto written = FileManager::writeFileAtomically(path, *text);
    return written ? Result<void, StorageError>()
                   : failure(StorageError::fromSystem(written.error().systemNumber, path));
}

void WipeNotes::remove(const std::string& keyChain, const std::string& key) const {
    std::error_code ignored;
    std::filesystem::remove(pathOf(keyChain, key), ignored);
}

std::vector<WipeNote> WipeNotes::all() const {
    std::vector<WipeNote> notes;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder_, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().extension() != extension) {
            continue;
        }
        const auto text = FileManager::readFile(entry->path(), maximumNote);
        if (auto note = text ? JSONDecoder().decode<WipeNote>(viewOf(*text)) : failure(DecodingError())) {
            notes.push_back(*std::move(note));
        }
    }
    return notes;
}

} // namespace zelto
