#pragma once

// For sources only.

#include <ZeltoHost/Storage/StorageError.h>

#include <Platform/Date.h>
#include <Platform/FileDescriptor.h>
#include <Platform/JSON/JSONCoding.h>
#include <Platform/Result.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zelto {

// That the tokens of a record are kept in a store after a wipe.
struct WipeNote {
    std::string keyChain; // the store's name
    std::string key;      // of the record
    Date date;            // of the wipe
};

ZELTO_JSON_CODED(WipeNote);

// The notes of a data directory: one file each, below "wiped".
class WipeNotes {
  public:
    explicit WipeNotes(std::filesystem::path dataDirectory)
        : folder_(dataDirectory / "wiped"), dataDirectory_(std::move(dataDirectory)) {}

    // Held while a note is made or removed with what it stands for. Makes the folder.
    Result<FileDescriptor, StorageError> lock() const;

    bool has(const std::string& keyChain, const std::string& key) const;
    Result<void, StorageError> write(const WipeNote& note) const; // replaces an earlier one
    void remove(const std::string& keyChain, const std::string& key) const;

    std::vector<WipeNote> all() const; // those that can be read

  private:
    std::filesystem::path pathOf(const std::string& keyChain, const std::string& key) const;

    const std::filesystem::path folder_;
    const std::filesystem::path dataDirectory_;
};

} // namespace zelto
