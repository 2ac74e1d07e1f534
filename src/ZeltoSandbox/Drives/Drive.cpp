#include <ZeltoSandbox/Drives/Drive.h>

#include <ZeltoSandbox/Drives/DemoFiles.h>

#include <Platform/Crypto/Digest.h>

#include <set>

namespace zelto::sandbox {

namespace {

// The numbers of additional entries and of their revisions, beyond those of all others.
constexpr std::uint64_t additionalFolderNumber = 1'000'000;
constexpr std::uint64_t additionalFileNumber = 2'000'000;

std::string hexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        text.push_back(digits[static_cast<unsigned char>(c) >> 4]);
        text.push_back(digits[static_cast<unsigned char>(c) & 15]);
    }
    return text;
}

} // namespace

std::string driveContentHash(const SpoolRange& content) {
    constexpr std::size_t blockSize = std::size_t{4} << 20;
    std::string block(std::min<std::uint64_t>(blockSize, content.size), '\0');
    std::string digests;
    for (std::uint64_t position = 0; position < content.size;) {
        const auto count = content.read(position, block);
        if (count == 0) {
            break;
        }
        digests += viewOf(sha256(std::string_view(block).substr(0, count)));
        position += count;
    }
    return hexadecimal(viewOf(sha256(digests)));
}

Drive::Drive(Names names) : names_(names) {
    root_.id = names_.entry(0);
    root_.mediaType = DriveEntry::folderType;
    root_.date = demoDate;
}

DriveEntry* Drive::find(std::string_view id) {
    const auto found = entries_.find(id);
    return found == entries_.end() ? nullptr : &found->second;
}

std::pair<const DriveEntry*, const DriveRevision*> Drive::findRevision(std::string_view id) const {
    for (const auto& [key, entry] : entries_) {
        for (const auto& revision : entry.revisions) {
            if (revision.id == id) {
                return {&entry, &revision};
            }
        }
    }
    return {nullptr, nullptr};
}

std::vector<DriveEntry*> Drive::children(const DriveEntry& folder) {
    std::vector<DriveEntry*> found;
    for (auto& [id, entry] : entries_) {
        if (entry.parent == &folder) {
            found.push_back(&entry);
        }
    }
    return found;
}

DriveEntry& Drive::add(std::uint64_t number, DriveEntry entry) {
    entry.id = names_.entry(number);
    auto id = entry.id;
    return entries_.insert_or_assign(std::move(id), std::move(entry)).first->second;
}

DriveEntry& Drive::addFolder(const DriveEntry& parent, std::string name, Date date) {
    return addDocument(parent, std::move(name), std::string(DriveEntry::folderType), date);
}

DriveEntry& Drive::addFile(const DriveEntry& parent, std::string name, std::string mediaType,
                           SpoolRange content, Date date) {
    auto& file = addDocument(parent, std::move(name), std::move(mediaType), date);
    addRevision(file, std::move(content), date);
    return file;
}

DriveEntry& Drive::addDocument(const DriveEntry& parent, std::string name, std::string mediaType, Date date) {
    return add(++lastEntry_, {.id = {},
                              .parent = &parent,
                              .name = std::move(name),
                              .mediaType = std::move(mediaType),
                              .date = date,
                              .revisions = {}});
}

void Drive::addRevision(DriveEntry& file, SpoolRange content, Date date) {
    addRevision(file, ++lastRevision_, std::move(content), date);
}

void Drive::addRevision(DriveEntry& file, std::uint64_t number, SpoolRange content, Date date) {
    auto hash = driveContentHash(content);
    used_ += content.size;
    file.date = date;
    file.revisions.push_back({names_.revision(number), date, std::move(content), std::move(hash), {}});
    unpublished_.push_back(file.id);
}

void Drive::noteUpload(const DriveEntry& file) {
    ++uploadCount_;
    newest_ = file.id;
}

bool Drive::hasSpace(const SandboxDrives& settings, std::uint64_t bytes) const {
    return !settings.space || (used_ <= *settings.space && bytes <= *settings.space - used_);
}

void Drive::applySettings(const SandboxDrives& settings) {
    setAdditionalFolders(settings.additionalFolders);
    setAdditionalFiles(settings.additionalFiles);
}

void Drive::setAdditionalFolders(std::uint64_t count) {
    std::vector<std::string> surplus;
    for (auto index = count; index < additionalFolders_; ++index) {
        surplus.push_back(names_.entry(additionalFolderNumber + index));
    }
    for (auto index = additionalFolders_; index < count; ++index) {
        add(additionalFolderNumber + index, {.id = {},
                                             .parent = &root_,
                                             .name = "Additional folder " + std::to_string(index + 1),
                                             .mediaType = std::string(DriveEntry::folderType),
                                             .date = demoDate,
                                             .revisions = {}});
    }
    additionalFolders_ = count;
    remove(surplus);
}

void Drive::setAdditionalFiles(std::uint64_t count) {
    if (additionalFiles_ == 0 && count > 0) {
        add(additionalFileNumber, {.id = {},
                                   .parent = &root_,
                                   .name = "Additional files",
                                   .mediaType = std::string(DriveEntry::folderType),
                                   .date = demoDate,
                                   .revisions = {}});
    }
    std::vector<std::string> surplus;
    for (auto index = count; index < additionalFiles_; ++index) {
        surplus.push_back(names_.entry(additionalFileNumber + 1 + index));
    }
    if (count == 0 && additionalFiles_ > 0) {
        surplus.push_back(names_.entry(additionalFileNumber));
    }
    for (auto index = additionalFiles_; index < count; ++index) {
        addAdditionalFile(index);
    }
    additionalFiles_ = count;
    remove(surplus);
}

void Drive::addAdditionalFile(std::uint64_t index) {
    const auto number = additionalFileNumber + 1 + index;
    const auto name = "Additional file " + std::to_string(index + 1) + ".txt";
    auto& file = add(number, {.id = {},
                              .parent = find(names_.entry(additionalFileNumber)),
                              .name = name,
                              .mediaType = "text/plain",
                              .date = demoDate,
                              .revisions = {}});
    addRevision(file, number, SpoolRange::all(std::make_shared<SpooledBytes>(name)), demoDate);
}

void Drive::remove(const std::vector<std::string>& ids) {
    if (ids.empty()) {
        return;
    }
    std::set<const DriveEntry*> removed;
    for (const auto& id : ids) {
        removed.insert(find(id));
    }
    const auto isBelow = [&](const DriveEntry* entry) {
        while (entry && !removed.contains(entry)) {
            entry = entry->parent;
        }
        return entry != nullptr;
    };
    std::vector<std::string> all;
    for (const auto& [id, entry] : entries_) {
        if (isBelow(&entry)) {
            all.push_back(id);
        }
    }
    for (const auto& id : all) {
        for (const auto& revision : entries_.find(id)->second.revisions) {
            used_ -= revision.content.size;
        }
        entries_.erase(id);
    }
}

void Drive::publish(FileStore& files) {
    for (const auto& id : std::exchange(unpublished_, {})) {
        auto* file = find(id);
        if (!file) {
            continue;
        }
        for (auto& revision : file->revisions) {
            if (revision.path.empty()) {
                revision.path = files.add(revision.content, file->name, file->mediaType);
            }
        }
    }
}

} // namespace zelto::sandbox
