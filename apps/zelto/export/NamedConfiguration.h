#pragma once

#include "base/Outcome.h"
#include "export/Targets.h"

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// A configuration's JSON for people, with names where the record has numbers and identifiers:
//
//     "saveTo": {"board": "Work", "list": "To Do"}, "saveAs": "pdf", "dueDate": "2026-03-05T14:00:00Z",
//     "attachments": {"list": [{"name": "Agenda.txt", "size": 33, "state": "selected"}]}
//
// Each member is read in either form. `file` is for messages.

namespace zelto::cli {

// All but the target.
void writeNames(JSONObject& configuration);
Outcome<void> readNames(JSONObject& configuration, const std::string& file);

// Whether attachments are named without their identifiers: by such a list, or by the names of those to take.
bool areNamed(const JSONValue& attachments);

// The message's attachments, of which those are selected that the list selects. Of several with one name, the
// first one in the list is the message's first one.
Outcome<IntegrationAttachments> attachmentsNamed(const JSONValue& attachments, IntegrationAttachments offered,
                                                 const std::string& file);

// The names of a target's levels, of other things that belong to it ("user"), or one path as --target takes
// it.
struct NamedTarget {
    std::vector<std::pair<std::string, std::string>> parts;
    std::string path;

    // Null if there is no such part.
    const std::string* find(std::string_view key) const;
};

// `nullopt` for a target in the record's own form.
std::optional<NamedTarget> namedTarget(const JSONValue& target);

// `otherKey`: of a part that is no level; empty for none.
Outcome<TargetPath> findTarget(const TargetTree& tree, const NamedTarget& target, std::string_view otherKey,
                               const std::string& account);

// Which of the nodes has that name or identifier. `what` is said of it: "board".
Outcome<std::size_t> findNode(const std::vector<TargetNode>& nodes, const std::string& text,
                              std::string_view what, const std::string& account);

// Where a target in the record's own form is in the tree; `nullopt` if it is not there any more.
std::optional<TargetPath> pathOf(const TargetTree& tree, const JSONValue& target);

// Which of the nodes has that identifier.
std::optional<std::size_t> indexWithIdentifier(const std::vector<TargetNode>& nodes,
                                               std::string_view identifier);

// The names of the levels, as they are read again; of a tree of kinds, the name under its kind.
JSONObject namesOf(const TargetTree& tree, const TargetPath& path);

// Which of the nodes a part of a target in the record's own form is, which may be null.
std::optional<std::size_t> indexOf(const std::vector<TargetNode>& nodes, const JSONValue* part);

// The name where it means this node alone, else the identifier.
const std::string& uniqueName(const std::vector<TargetNode>& nodes, std::size_t index);

// What is none of the keys is wrong usage.
Outcome<void> checkKeys(const JSONObject& configuration, std::span<const std::string_view> known,
                        const std::string& file);

// Replaces each member that `over` has; null leaves out the member, or empties a list.
void replaceMembers(JSONObject& configuration, const JSONObject& over);

} // namespace zelto::cli
