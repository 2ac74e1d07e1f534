#pragma once

#include "base/Outcome.h"
#include "base/Terminal.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::cli {

// Something on a service that an export can be put into, or that holds such things.
struct TargetNode {
    std::string id;
    std::string name; // as people know it; may be empty
    std::vector<TargetNode> children = {};
    // What else it is called, of a tree with one level.
    std::vector<std::string> aliases = {};
    std::string remark = {};    // is shown beside the identifier: "private"
    std::string_view kind = {}; // one of the tree's
};

// All that an account's exports can be put into, by the service's own data. The nodes of the last level are
// the targets.
struct TargetTree {
    std::vector<std::string_view> levels; // the service's word for each: "board", "list"
    std::vector<TargetNode> nodes;
    // Of folders in folders: every node is a target, of the one level, named by a path that begins with "/".
    bool isNested = false;
    // Where things of several kinds share the one level, the key of each in a target that is given by names:
    // "channel", "user".
    std::vector<std::string_view> kinds = {};
    std::string_view option = "--target"; // what chooses in it
    // Whether the first target may be suggested to somebody who has chosen none.
    bool suggestsFirst = true;
};

// Which node on each level, from the top.
using TargetPath = std::vector<std::size_t>;

const TargetNode& nodeAt(const TargetTree& tree, std::span<const std::size_t> path);

// What --target names: the names or the identifiers of all levels, joined by "/", or the target's identifier
// or its name alone where no other target has it; an alias where nothing has that name. Names may hold "/";
// without regard to case where nothing fits exactly. In a nested tree "/" may lack at the start, and stand at
// the end. A failure lists what there is, for `option`, where the text stands.
Outcome<TargetPath> findTarget(const TargetTree& tree, const std::string& text, const std::string& account,
                               std::string_view option = "--target");

// The first of the nodes' names, "Inbox, Errands and 3 more".
std::string listOf(const std::vector<TargetNode>& nodes);

// "Board/List", "/Folder/Folder", by identifier where there is no name.
std::string targetName(const TargetTree& tree, const TargetPath& path);

// The name as people know it; the identifier where there is none.
const std::string& nameOrIdentifier(const std::optional<std::string>& name, const std::string& identifier);

// Each node on a line of its own with its identifier and remark, below what holds it.
std::string linesOf(const TargetTree& tree, const Terminal& terminal);

// Whether there is anything on the last level.
bool holdsTargets(const TargetTree& tree);

// No target is chosen for an export that needs one; in a tree without targets there is nothing to choose.
Failure noTarget(const TargetTree& tree, const std::string& service, const std::string& account);

// What the option names cannot be looked up, since the account's data were never loaded.
Failure targetsUnknown(const std::string& service, const std::string& account,
                       std::string_view option = "--target");

// Each target on a line as --target takes it: by its name, or where that has to be quoted in a shell and the
// first alias means this target alone, by that; by its identifier where the name has more than one line, or
// means another target too.
std::string pathLinesOf(const TargetTree& tree);

// "Trello shows no board with a list to put it into; make one there first."; where another option chooses,
// "Hubspot shows no lifecycle stage for --stage; make one there first."
std::string nothingToChoose(const TargetTree& tree, const std::string& service);

// "zelto targets ID"
std::string targetsCommand(const std::string& account);

// "zelto targets ID --refresh"
std::string refreshCommand(const std::string& account);

} // namespace zelto::cli
