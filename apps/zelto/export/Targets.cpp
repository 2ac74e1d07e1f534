#include "export/Targets.h"

#include "base/ShellText.h"

#include <Platform/Joined.h>
#include <Platform/Text.h>

#include <algorithm>
#include <functional>
#include <ranges>
#include <unordered_map>

namespace zelto::cli {

namespace {

constexpr std::size_t listedCount = 10;

const std::string& label(const TargetNode& node) {
    return node.name.empty() ? node.id : node.name;
}

using TextForm = std::string (*)(std::string_view);

std::string asWritten(std::string_view text) {
    return std::string(text);
}

// What of a target is compared with a text.
enum class Compared { names, aliases };

// Everything in a tree that a text names, when both are compared in a form.
class Search {
  public:
    Search(const TargetTree& tree, TextForm form, const std::string& text,
           Compared compared = Compared::names)
        : tree_(tree), form_(form), compared_(compared), text_(form(text)) {
        if (compared == Compared::names || tree.levels.size() == 1) {
            visit(tree.nodes, text_);
        }
    }

    bool foundAny() const { return !targets.empty() || !holders.empty(); }

    std::vector<TargetPath> targets;
    std::vector<TargetPath> holders; // named alone, without anything in them
    TargetPath lastHolder;           // named with something that is not in it

  private:
    // `text` is what follows the names of the levels above; nullopt where those do not fit.
    void visit(const std::vector<TargetNode>& nodes, std::optional<std::string_view> text) {
        const bool holdTargets = path_.size() + 1 == tree_.levels.size();
        for (std::size_t index = 0; index < nodes.size(); ++index) {
            const auto& node = nodes[index];
            const auto remaining = text ? textAfter(node, *text) : std::nullopt;
            const bool isNamed = remaining && remaining->empty();
            path_.push_back(index);
            if (holdTargets) {
                if (compared_ == Compared::aliases ? hasAlias(node) : isNamed || form_(node.id) == text_) {
                    targets.push_back(path_);
                }
            } else if (isNamed) {
                holders.push_back(path_);
            } else {
                const auto before = targets.size();
                visit(node.children, remaining ? std::optional(remaining->substr(1)) : std::nullopt);
                if (remaining && targets.size() == before) {
                    lastHolder = path_;
                }
            }
            path_.pop_back();
        }
    }

    bool hasAlias(const TargetNode& node) const {
        return std::ranges::any_of(node.aliases,
                                   [&](const std::string& alias) { return form_(alias) == text_; });
    }

    // What follows the node's name or identifier: an empty text, or "/" and more.
    std::optional<std::string_view> textAfter(const TargetNode& node, std::string_view text) const {
        for (const auto* each : {&node.name, &node.id}) {
            const auto written = form_(*each);
            if (written.empty() || !text.starts_with(written)) {
                continue;
            }
            const auto remaining = text.substr(written.size());
            if (remaining.empty() || remaining.front() == '/') {
                return remaining;
            }
        }
        return std::nullopt;
    }

    const TargetTree& tree_;
    const TextForm form_;
    const Compared compared_;
    const std::string text_;
    TargetPath path_;
};

std::string listed(std::size_t count, const std::function<std::string(std::size_t)>& name) {
    auto text = joined(std::views::iota(std::size_t{0}, std::min(count, listedCount)), ", ", name);
    if (count > listedCount) {
        text += " and " + std::to_string(count - listedCount) + " more";
    }
    return text;
}

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string ambiguous(const TargetTree& tree, const std::vector<TargetPath>& targets,
                      const std::string& text) {
    return quoted(text) + " means several: " +
           listed(targets.size(),
                  [&](std::size_t index) {
                      return targetName(tree, targets[index]) + " (" + nodeAt(tree, targets[index]).id + ")";
                  }) +
           "; give the identifier";
}

std::string onlyHolder(const TargetTree& tree, const TargetPath& holder, const std::string& text) {
    const auto& children = nodeAt(tree, holder).children;
    return quoted(text) + " is a " + std::string(tree.levels[holder.size() - 1]) + "; add one of its " +
           std::string(tree.levels[holder.size()]) + "s: " +
           listed(children.size(), [&](std::size_t index) { return text + "/" + label(children[index]); });
}

std::string unknownBelow(const TargetTree& tree, const TargetPath& holder, const std::string& text) {
    const auto& node = nodeAt(tree, holder);
    return "there is no " + std::string(tree.levels[holder.size()]) + " " + quoted(text) + "; the " +
           std::string(tree.levels[holder.size() - 1]) + " " + quoted(label(node)) + " has " +
           listOf(node.children);
}

// The targets of that name, when what holds them was left out.
std::vector<TargetPath> targetsNamed(const TargetTree& tree, const std::string& text) {
    const auto wanted = foldedCase(text);
    std::vector<TargetPath> found;
    if (wanted.empty()) {
        return found;
    }
    TargetPath path;
    const std::function<void(const std::vector<TargetNode>&)> visit = [&](const auto& nodes) {
        for (std::size_t index = 0; index < nodes.size(); ++index) {
            path.push_back(index);
            if (path.size() < tree.levels.size()) {
                visit(nodes[index].children);
            } else if (foldedCase(nodes[index].name) == wanted) {
                found.push_back(path);
            }
            path.pop_back();
        }
    };
    visit(tree.nodes);
    return found;
}

std::string unknown(const TargetTree& tree, const std::string& text) {
    const std::string top(tree.levels.front());
    if (const auto meant = targetsNamed(tree, text); !meant.empty()) {
        return quoted(text) + " is a " + std::string(tree.levels.back()) + "; name its " + top + " too: " +
               listed(meant.size(), [&](std::size_t index) { return targetName(tree, meant[index]); });
    }
    return "there is no " + top + " " + quoted(text) + "; there are " + listOf(tree.nodes);
}

Outcome<TargetPath> decided(const TargetTree& tree, const Search& search, const std::string& text,
                            const std::string& account, std::string_view option) {
    if (search.targets.size() == 1) {
        return search.targets.front();
    }
    const auto problem = [&] {
        if (!search.targets.empty()) {
            return ambiguous(tree, search.targets, text);
        }
        if (!search.holders.empty()) {
            return onlyHolder(tree, search.holders.front(), text);
        }
        return search.lastHolder.empty() ? unknown(tree, text) : unknownBelow(tree, search.lastHolder, text);
    }();
    return wrongUsage(std::string(option) + ": " + problem + ".", refreshCommand(account));
}

// Of a nested tree.

// Calls the visitor with the path of each node, holders first.
void visitNodes(const std::vector<TargetNode>& nodes, TargetPath& path,
                const std::function<void(const TargetPath&)>& visitor) {
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        path.push_back(index);
        visitor(path);
        visitNodes(nodes[index].children, path, visitor);
        path.pop_back();
    }
}

std::vector<TargetPath> nestedTargets(const TargetTree& tree) {
    std::vector<TargetPath> all;
    TargetPath path;
    visitNodes(tree.nodes, path, [&](const TargetPath& each) { all.push_back(each); });
    return all;
}

std::string absolutePath(std::string_view text) {
    text = text.substr(0, text.find_last_not_of('/') + 1);
    return text.starts_with('/') ? std::string(text) : "/" + std::string(text);
}

// The targets that the text names by path or identifier, else those that it names by name.
std::vector<TargetPath> nestedTargetsNamed(const TargetTree& tree, TextForm form, const std::string& text) {
    const auto wanted = form(text);
    const auto wantedPath = form(absolutePath(text));
    std::vector<TargetPath> places;
    std::vector<TargetPath> namesakes;
    for (auto& path : nestedTargets(tree)) {
        const auto& node = nodeAt(tree, path);
        if (form(targetName(tree, path)) == wantedPath || form(node.id) == wanted) {
            places.push_back(std::move(path));
        } else if (form(node.name) == wanted) {
            namesakes.push_back(std::move(path));
        }
    }
    return places.empty() ? namesakes : places;
}

Outcome<TargetPath> findNestedTarget(const TargetTree& tree, const std::string& text,
                                     const std::string& account, std::string_view option) {
    auto found = nestedTargetsNamed(tree, asWritten, text);
    if (found.empty()) {
        found = nestedTargetsNamed(tree, foldedCase, text);
    }
    if (found.size() == 1) {
        return found.front();
    }
    const auto all = nestedTargets(tree);
    const auto problem =
        found.empty()
            ? "there is no " + std::string(tree.levels.front()) + " " + quoted(text) + "; there are " +
                  listed(all.size(), [&](std::size_t index) { return targetName(tree, all[index]); })
            : ambiguous(tree, found, text);
    return wrongUsage(std::string(option) + ": " + problem + ".", refreshCommand(account));
}

std::string besideLabel(const TargetNode& node) {
    const auto id = label(node) == node.id ? "" : node.id;
    return id + (id.empty() || node.remark.empty() ? "" : ", ") + node.remark;
}

void appendLines(std::string& text, const std::vector<TargetNode>& nodes, std::size_t depth,
                 const Terminal& terminal) {
    constexpr std::size_t indent = 2;
    for (const auto& node : nodes) {
        text.append(depth * indent, ' ');
        text += terminal.shown(label(node));
        if (const auto more = besideLabel(node); !more.empty()) {
            text += "  (" + terminal.shown(more) + ")";
        }
        text += '\n';
        appendLines(text, node.children, depth + 1, terminal);
    }
}

// By its whole name.
struct Target {
    std::string name;
    const TargetNode* node;
};

void appendTargets(std::vector<Target>& targets, TargetPath& path, const TargetTree& tree,
                   const std::vector<TargetNode>& nodes) {
    if (tree.isNested) {
        for (const auto& each : nestedTargets(tree)) {
            targets.push_back({targetName(tree, each), &nodeAt(tree, each)});
        }
        return;
    }
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        path.push_back(index);
        if (path.size() < tree.levels.size()) {
            appendTargets(targets, path, tree, nodes[index].children);
        } else {
            targets.push_back({targetName(tree, path), &nodes[index]});
        }
        path.pop_back();
    }
}

using Uses = std::unordered_map<std::string, int>;

// How many targets each name or identifier may mean.
Uses usesOfNames(const std::vector<Target>& targets) {
    Uses uses;
    for (const auto& [name, node] : targets) {
        ++uses[name];
        if (node->id != name) {
            ++uses[node->id];
        }
    }
    return uses;
}

// How many each of these or an alias may mean.
Uses usesOfTexts(const std::vector<Target>& targets, Uses uses) {
    for (const auto& [name, node] : targets) {
        for (const auto& alias : node->aliases) {
            ++uses[alias];
        }
    }
    return uses;
}

bool isOneLine(const std::string& text) {
    return !text.empty() && text.find_first_of("\r\n") == std::string::npos;
}

} // namespace

const TargetNode& nodeAt(const TargetTree& tree, std::span<const std::size_t> path) {
    const auto* node = &tree.nodes.at(path.front());
    for (const auto index : path.subspan(1)) {
        node = &node->children.at(index);
    }
    return *node;
}

std::string listOf(const std::vector<TargetNode>& nodes) {
    return listed(nodes.size(), [&](std::size_t index) { return label(nodes[index]); });
}

Outcome<TargetPath> findTarget(const TargetTree& tree, const std::string& text, const std::string& account,
                               std::string_view option) {
    if (tree.isNested) {
        return findNestedTarget(tree, text, account, option);
    }
    const Search exact(tree, asWritten, text);
    if (exact.foundAny()) {
        return decided(tree, exact, text, account, option);
    }
    if (const Search called(tree, asWritten, text, Compared::aliases); called.foundAny()) {
        return decided(tree, called, text, account, option);
    }
    const Search folded(tree, foldedCase, text);
    if (!folded.foundAny()) {
        if (const Search called(tree, foldedCase, text, Compared::aliases); called.foundAny()) {
            return decided(tree, called, text, account, option);
        }
        if (const auto named = targetsNamed(tree, text); named.size() == 1) {
            return named.front();
        }
    }
    const bool namesHolder = !folded.foundAny() && !exact.lastHolder.empty();
    return decided(tree, namesHolder ? exact : folded, text, account, option);
}

std::string targetName(const TargetTree& tree, const TargetPath& path) {
    std::string name;
    for (std::size_t depth = 1; depth <= path.size(); ++depth) {
        const auto& text = label(nodeAt(tree, std::span(path).first(depth)));
        const bool begins = depth == 1 && (!tree.isNested || text.starts_with('/'));
        name.append(begins ? "" : "/").append(text);
    }
    return name;
}

const std::string& nameOrIdentifier(const std::optional<std::string>& name, const std::string& identifier) {
    return name && !name->empty() ? *name : identifier;
}

std::string linesOf(const TargetTree& tree, const Terminal& terminal) {
    std::string text;
    appendLines(text, tree.nodes, 0, terminal);
    return text;
}

std::string pathLinesOf(const TargetTree& tree) {
    std::vector<Target> targets;
    TargetPath path;
    appendTargets(targets, path, tree, tree.nodes);
    const auto ofNames = usesOfNames(targets);
    const auto ofTexts = usesOfTexts(targets, ofNames);
    return joined(targets, "", [&](const Target& target) {
        const auto& [name, node] = target;
        const auto alias = node->aliases.empty() ? std::string() : node->aliases.front();
        if (shellWord(name) != name && isOneLine(alias) && ofTexts.at(alias) == 1) {
            return alias + "\n";
        }
        return (isOneLine(name) && ofNames.at(name) == 1 ? name : node->id) + "\n";
    });
}

std::string nothingToChoose(const TargetTree& tree, const std::string& service) {
    const TargetTree usual;
    const auto purpose = tree.option == usual.option ? "to put it into" : "for " + std::string(tree.option);
    return service + " shows no " + joined(tree.levels, " with a ") + " " + purpose +
           "; make one there first.";
}

bool holdsTargets(const TargetTree& tree) {
    return !pathLinesOf(tree).empty();
}

Failure noTarget(const TargetTree& tree, const std::string& service, const std::string& account) {
    const bool isKnown = !tree.levels.empty();
    if (holdsTargets(tree) && !tree.suggestsFirst) {
        return {"noTarget", "No target is chosen.", targetsCommand(account)};
    }
    if (holdsTargets(tree)) {
        const auto paths = pathLinesOf(tree);
        return {"noTarget", "No target is chosen.",
                NextCommand::again("--target", paths.substr(0, paths.find('\n')))};
    }
    return {"noTarget", "No target is chosen" + (isKnown ? ": " + nothingToChoose(tree, service) : "."),
            refreshCommand(account)};
}

Failure targetsUnknown(const std::string& service, const std::string& account, std::string_view option) {
    return {"noTarget",
            "What " + std::string(option) + " names is not known: the data of " + service +
                " were never loaded.",
            refreshCommand(account)};
}

std::string targetsCommand(const std::string& account) {
    return "zelto targets " + shellWord(account);
}

std::string refreshCommand(const std::string& account) {
    return targetsCommand(account) + " --refresh";
}

} // namespace zelto::cli
