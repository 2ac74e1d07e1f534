#include "export/services/DriveFolders.h"

#include <Platform/JSON/JSONRecordDescription.h>
#include <Platform/Text.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace zelto::cli {

ZELTO_JSON_RECORD(DriveFolder, id, name, path);
ZELTO_JSON_RECORD(DriveFolders, folders);

namespace {

constexpr auto rootName = "/";

// Puts folders into those that their paths name.
class Nesting {
  public:
    explicit Nesting(const std::vector<DriveFolder>& folders) : folders_(folders), children_(folders.size()) {
        std::unordered_map<std::string_view, std::size_t> indexes;
        for (std::size_t index = 0; index < folders.size(); ++index) {
            if (const auto& path = folders[index].path) {
                indexes.emplace(*path, index);
            }
        }
        for (std::size_t index = 0; index < folders.size(); ++index) {
            const auto holder = indexes.find(holderOf(folders[index]));
            (holder == indexes.end() ? tops_ : children_[holder->second]).push_back(index);
        }
    }

    std::vector<TargetNode> nodes() { return nodesOf(tops_); }

  private:
    // A part of the path, so that no folder lies in itself.
    static std::string_view holderOf(const DriveFolder& folder) {
        const auto end = folder.path ? folder.path->rfind('/') : std::string::npos;
        return end == std::string::npos ? std::string_view() : std::string_view(*folder.path).substr(0, end);
    }

    std::vector<TargetNode> nodesOf(const std::vector<std::size_t>& indexes) {
        std::vector<std::pair<std::string, std::size_t>> sorted;
        for (const auto index : indexes) {
            sorted.emplace_back(foldedCase(folders_[index].name), index);
        }
        std::ranges::sort(sorted);
        std::vector<TargetNode> nodes;
        for (const auto& [name, index] : sorted) {
            nodes.push_back({folders_[index].id, folders_[index].name, nodesOf(children_[index])});
        }
        return nodes;
    }

    const std::vector<DriveFolder>& folders_;
    std::vector<std::vector<std::size_t>> children_;
    std::vector<std::size_t> tops_;
};

} // namespace

DriveFolders foldersOf(std::vector<DropboxFolder> folders) {
    DriveFolders all;
    for (auto& [id, name, path] : folders) {
        all.folders.push_back({std::move(id), std::move(name), std::move(path)});
    }
    return all;
}

DriveFolders foldersOf(std::vector<GoogleDriveFolder> folders) {
    DriveFolders all;
    for (auto& [id, name] : folders) {
        all.folders.push_back({std::move(id), std::move(name), std::nullopt});
    }
    return all;
}

TargetTree targetTreeOf(const DriveFolders& folders, const std::string& rootIdentifier) {
    TargetTree tree{.levels = {"folder"}, .nodes = {{rootIdentifier, rootName}}};
    tree.isNested = std::ranges::any_of(folders.folders,
                                        [](const DriveFolder& folder) { return folder.path.has_value(); });
    if (tree.isNested) {
        std::ranges::move(Nesting(folders.folders).nodes(), std::back_inserter(tree.nodes));
        return tree;
    }
    for (const auto& folder : folders.folders) {
        tree.nodes.push_back({folder.id, folder.name});
    }
    return tree;
}

const DriveFolder* folderAt(const DriveFolders& folders, const TargetPath& path,
                            const std::string& rootIdentifier) {
    const auto tree = targetTreeOf(folders, rootIdentifier);
    const auto& id = nodeAt(tree, path).id;
    const auto folder = std::ranges::find(folders.folders, id, &DriveFolder::id);
    return id == rootIdentifier || folder == folders.folders.end() ? nullptr : &*folder;
}

} // namespace zelto::cli
