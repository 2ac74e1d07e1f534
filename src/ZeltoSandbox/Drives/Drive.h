#pragma once

#include <Platform/Date.h>
#include <ZeltoSandbox/FileStore.h>
#include <ZeltoSandbox/HTTP/Spool.h>
#include <ZeltoSandbox/SandboxDrives.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zelto::sandbox {

// One version of a file's content.
struct DriveRevision {
    std::string id;
    Date date;
    SpoolRange content;
    std::string hash; // of the content: hexadecimal SHA-256 of the SHA-256 of each block of 4 MiB
    std::string path; // in the file store; empty until `publish`
};

// A folder or a file.
struct DriveEntry {
    std::string id;
    const DriveEntry* parent = nullptr; // null for the root alone
    std::string name;
    std::string mediaType; // folderType for a folder
    bool isTrashed = false;
    Date date;
    std::vector<DriveRevision> revisions; // oldest first; empty where there is no content to download

    bool isFolder() const { return mediaType == folderType; }

    // The root is nobody's child, and in no trash.
    bool isInTrash() const { return isTrashed || (parent && parent->isInTrash()); }

    std::uint64_t size() const { return revisions.empty() ? 0 : revisions.back().content.size; }

    static constexpr std::string_view folderType = "application/vnd.google-apps.folder";
};

// The folders and files of a cloud drive, in memory. Names and identifiers are opaque to it; addresses of
// entries stay valid while they exist.
class Drive {
  public:
    // How a service writes the identifier of its n-th entry and of the n-th revision of all; entries that are
    // made in the same order have the same ones in every sandbox. Texts in the order of the numbers.
    struct Names {
        std::string (*entry)(std::uint64_t number);
        std::string (*revision)(std::uint64_t number);
    };

    static constexpr std::size_t maximumUploadCount = 20'000;

    explicit Drive(Names names);
    Drive(const Drive&) = delete;
    Drive& operator=(const Drive&) = delete;

    const DriveEntry& root() const { return root_; }

    // Null for none, and for the root.
    DriveEntry* find(std::string_view id);
    // The entry with the revision, and the revision; nulls for none.
    std::pair<const DriveEntry*, const DriveRevision*> findRevision(std::string_view id) const;
    std::vector<DriveEntry*> children(const DriveEntry& folder);

    // All but the root, in the order in which they were made.
    const std::map<std::string, DriveEntry, std::less<>>& entries() const { return entries_; }

    DriveEntry& addFolder(const DriveEntry& parent, std::string name, Date date);
    DriveEntry& addFile(const DriveEntry& parent, std::string name, std::string mediaType, SpoolRange content,
                        Date date);
    // Without content that could be downloaded, such as a document of the service's own.
    DriveEntry& addDocument(const DriveEntry& parent, std::string name, std::string mediaType, Date date);
    void addRevision(DriveEntry& file, SpoolRange content, Date date);

    // For what is uploaded: the state counts it and names the newest.
    void noteUpload(const DriveEntry& file);

    std::size_t uploadCount() const { return uploadCount_; }

    const std::string& newest() const { return newest_; }

    // Of all files with their earlier revisions.
    std::uint64_t usedBytes() const { return used_; }

    // Whether so many bytes more are allowed.
    bool hasSpace(const SandboxDrives& settings, std::uint64_t bytes) const;

    // Makes and removes entries until there are as many additional ones as the settings say.
    void applySettings(const SandboxDrives& settings);

    // Gives the contents of all files to the store, for the page to open.
    void publish(FileStore& files);

  private:
    DriveEntry& add(std::uint64_t number, DriveEntry entry);
    void addRevision(DriveEntry& file, std::uint64_t number, SpoolRange content, Date date);
    void addAdditionalFile(std::uint64_t index);
    void setAdditionalFiles(std::uint64_t count);
    void setAdditionalFolders(std::uint64_t count);
    // Those with these identifiers and all below them.
    void remove(const std::vector<std::string>& ids);

    Names names_;
    std::map<std::string, DriveEntry, std::less<>> entries_;
    DriveEntry root_;
    std::uint64_t lastEntry_ = 0;
    std::uint64_t lastRevision_ = 0;
    std::uint64_t additionalFolders_ = 0;
    std::uint64_t additionalFiles_ = 0;
    std::vector<std::string> unpublished_; // identifiers of files
    std::uint64_t used_ = 0;               // bytes
    std::size_t uploadCount_ = 0;
    std::string newest_;
};

// The hash of a revision's content.
std::string driveContentHash(const SpoolRange& content);

} // namespace zelto::sandbox
