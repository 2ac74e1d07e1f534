#include "export/NamedConfiguration.h"

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationLink.h>

#include <Platform/ISO8601.h>
#include <Platform/Joined.h>
#include <Platform/Text.h>

#include <algorithm>
#include <iterator>
#include <map>

namespace zelto::cli {

namespace {

constexpr std::string_view attachmentsKey = "attachments";
constexpr std::string_view targetKey = "saveTo";

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

bool isDateKey(std::string_view key) {
    return key == "deadline" || key.ends_with("Date");
}

bool isTypeKey(std::string_view key) {
    return key == "saveAs" || key == "selectedExportKind";
}

bool isTypesKey(std::string_view key) {
    return key == "supportedContentTypes" || key == "availableExportKinds";
}

// A value's number as its name; anything else stays.
template <class E> void writeName(JSONValue& value) {
    const auto number = value.asInt64();
    if (const auto known = number ? fromRawValue<E>(*number) : std::nullopt) {
        value = std::string(nameOf(*known));
    }
}

template <class E> Outcome<void> readName(JSONValue& value, std::string_view key, const std::string& file) {
    const auto* name = value.asString();
    if (!name) {
        return {};
    }
    const auto known = fromName<E>(*name);
    if (!known) {
        const auto names = joined(casesOf<E>(), ", ", [](const auto& each) { return each.name; });
        return wrongUsage(quoted(key) + " of " + file + " is one of " + names + "; not " + quoted(*name) +
                              ".",
                          "zelto config --help");
    }
    value = static_cast<std::int64_t>(rawValue(*known));
    return {};
}

void writeDate(JSONValue& value) {
    if (const auto seconds = value.asDouble()) {
        if (auto text = iso8601(Date::fromReferenceSeconds(*seconds)); !text.empty()) {
            value = std::move(text);
        }
    }
}

Outcome<void> readDate(JSONValue& value, std::string_view key, const std::string& file) {
    const auto* written = value.asString();
    const auto date = written ? parseISO8601(*written, MissingZone::local) : std::nullopt;
    if (written && !date) {
        return wrongUsage(quoted(key) + " of " + file + " is no date like 2026-03-05 or 2026-03-05T14:00.",
                          "zelto config --help");
    }
    if (date) {
        value = date->secondsSinceReference();
    }
    return {};
}

std::vector<std::string> keysOf(const JSONObject& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object) {
        keys.push_back(key);
    }
    return keys;
}

// Calls a function for each object in an attachments' list.
template <class F> void forEachAttachment(JSONValue& attachments, F function) {
    auto* const object = attachments.asObject();
    auto* const list = object ? object->find("list") : nullptr;
    auto* const array = list ? list->asArray() : nullptr;
    if (!array) {
        return;
    }
    for (auto& each : *array) {
        if (auto* const attachment = each.asObject()) {
            function(*attachment);
        }
    }
}

void writeAttachment(JSONObject& attachment) {
    attachment.erase("id");
    if (auto* const state = attachment.find("state")) {
        writeName<IntegrationAttachmentState>(*state);
    }
}

Outcome<void> readAttachments(JSONValue& attachments, const std::string& file) {
    Outcome<void> outcome;
    forEachAttachment(attachments, [&](JSONObject& attachment) {
        auto* const state = attachment.find("state");
        if (auto read = state ? readName<IntegrationAttachmentState>(*state, "state", file) : outcome;
            !read) {
            outcome = std::move(read);
        }
    });
    return outcome;
}

// Calls a function for each date that is a part of a target, on whatever level.
template <class F> void forEachDate(JSONValue& target, const F& function) {
    auto* const object = target.asObject();
    if (!object) {
        return;
    }
    for (const auto& key : keysOf(*object)) {
        auto& value = *object->find(key);
        if (isDateKey(key)) {
            function(value, key);
        } else {
            forEachDate(value, function);
        }
    }
}

Outcome<void> readDates(JSONValue& target, const std::string& file) {
    Outcome<void> outcome;
    forEachDate(target, [&](JSONValue& value, const std::string& key) {
        if (auto read = readDate(value, key, file); !read) {
            outcome = std::move(read);
        }
    });
    return outcome;
}

void writeMember(std::string_view key, JSONValue& value) {
    if (isTypeKey(key)) {
        writeName<IntegrationExportContentType>(value);
    } else if (key == "webLinkVisibility") {
        writeName<IntegrationWebLinkVisibility>(value);
    } else if (key == attachmentsKey) {
        forEachAttachment(value, writeAttachment);
    } else if (isDateKey(key)) {
        writeDate(value);
    } else if (key == targetKey) {
        forEachDate(value, [](JSONValue& date, const auto&) { writeDate(date); });
    } else if (auto* const types = isTypesKey(key) ? value.asArray() : nullptr) {
        std::ranges::for_each(*types, writeName<IntegrationExportContentType>);
    }
}

Outcome<void> readTypes(JSONValue& value, std::string_view key, const std::string& file) {
    auto* const types = value.asArray();
    for (std::size_t index = 0; types && index < types->size(); ++index) {
        if (auto read = readName<IntegrationExportContentType>((*types)[index], key, file); !read) {
            return read;
        }
    }
    return {};
}

Outcome<void> readMember(std::string_view key, JSONValue& value, const std::string& file) {
    if (isTypeKey(key)) {
        return readName<IntegrationExportContentType>(value, key, file);
    }
    if (key == "webLinkVisibility") {
        return readName<IntegrationWebLinkVisibility>(value, key, file);
    }
    if (key == attachmentsKey) {
        return readAttachments(value, file);
    }
    if (isDateKey(key)) {
        return readDate(value, key, file);
    }
    if (key == targetKey) {
        return readDates(value, file);
    }
    return isTypesKey(key) ? readTypes(value, key, file) : Outcome<void>();
}

// One of the message's attachments as a list names it.
struct NamedAttachment {
    std::string name;
    IntegrationAttachmentState state = IntegrationAttachmentState::selected;
};

std::optional<NamedAttachment> namedAttachment(const JSONValue& value) {
    if (const auto* name = value.asString()) {
        return NamedAttachment{*name};
    }
    const auto* name = value.find("name");
    if (!name || !name->asString()) {
        return std::nullopt;
    }
    NamedAttachment attachment{*name->asString()};
    const auto* state = value.find("state");
    const auto number = state ? state->asInt64() : std::nullopt;
    attachment.state = (number ? fromRawValue<IntegrationAttachmentState>(*number) : std::nullopt)
                           .value_or(attachment.state);
    return attachment;
}

const JSONValue::Array* listIn(const JSONValue& attachments) {
    const auto* list = attachments.find("list");
    return attachments.asArray() ? attachments.asArray() : list ? list->asArray() : nullptr;
}

// The n-th attachment of that name.
IntegrationAttachment* find(IntegrationAttachments& attachments, const std::string& name, std::size_t n) {
    for (auto& each : attachments.list) {
        if (each.name == name && n-- == 0) {
            return &each;
        }
    }
    return nullptr;
}

std::vector<std::size_t> matches(const std::vector<TargetNode>& nodes, const std::string& text,
                                 std::string (*form)(std::string_view)) {
    const auto wanted = form(text);
    std::vector<std::size_t> found;
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        if (form(nodes[index].name) == wanted || nodes[index].id == text) {
            found.push_back(index);
        }
    }
    return found;
}

std::string asWritten(std::string_view text) {
    return std::string(text);
}

const std::vector<TargetNode>& nodesBelow(const TargetTree& tree, const TargetPath& path) {
    const auto* nodes = &tree.nodes;
    for (const auto index : path) {
        nodes = &nodes->at(index).children;
    }
    return *nodes;
}

constexpr std::string_view saveToOption = "\"saveTo\"";

// Of a tree of kinds.
Outcome<TargetPath> findTargetOfKind(const TargetTree& tree, const NamedTarget& target,
                                     const std::string& account) {
    const auto& [kind, name] = target.parts.front();
    if (target.parts.size() != 1 || std::ranges::find(tree.kinds, kind) == tree.kinds.end()) {
        return wrongUsage("\"saveTo\" takes one of " + joined(tree.kinds, ", ") + ".",
                          refreshCommand(account));
    }
    TargetTree ofKind{.levels = {kind}, .nodes = {}};
    std::ranges::copy_if(tree.nodes, std::back_inserter(ofKind.nodes),
                         [&](const TargetNode& node) { return node.kind == kind; });
    const auto found = findTarget(ofKind, name, account, saveToOption);
    if (!found) {
        return failure(found.error());
    }
    return TargetPath{indexWithIdentifier(tree.nodes, nodeAt(ofKind, *found).id).value()};
}

} // namespace

void writeNames(JSONObject& configuration) {
    for (const auto& key : keysOf(configuration)) {
        writeMember(key, *configuration.find(key));
    }
}

Outcome<void> readNames(JSONObject& configuration, const std::string& file) {
    for (const auto& key : keysOf(configuration)) {
        if (auto read = readMember(key, *configuration.find(key), file); !read) {
            return read;
        }
    }
    return {};
}

bool areNamed(const JSONValue& attachments) {
    const auto* list = listIn(attachments);
    return list && std::ranges::any_of(*list, [](const JSONValue& each) { return !each.find("id"); });
}

Outcome<IntegrationAttachments> attachmentsNamed(const JSONValue& attachments, IntegrationAttachments offered,
                                                 const std::string& file) {
    using enum IntegrationAttachmentState;
    for (auto& each : offered.list) {
        each.state = each.state == selected ? allowed : each.state;
    }
    std::map<std::string, std::size_t> counts;
    for (const auto& each : *listIn(attachments)) {
        const auto named = namedAttachment(each);
        if (!named) {
            return wrongUsage("An attachment of " + file + " has no name.", "zelto config --help");
        }
        auto* const attachment = find(offered, named->name, counts[named->name]++);
        if (!attachment) {
            return wrongUsage("The message has no attachment " + quoted(named->name) + ", which " + file +
                                  " names.",
                              "zelto config --help");
        }
        if (attachment->state == restricted && named->state == selected) {
            return wrongUsage("The service does not take the attachment " + quoted(named->name) + ".",
                              "zelto config --help");
        }
        attachment->state = attachment->state == restricted ? restricted : named->state;
    }
    return offered;
}

std::optional<NamedTarget> namedTarget(const JSONValue& target) {
    if (const auto* path = target.asString()) {
        return NamedTarget{{}, *path};
    }
    const auto* parts = target.asObject();
    if (!parts || parts->empty()) {
        return std::nullopt;
    }
    NamedTarget named;
    for (const auto& [key, value] : *parts) {
        if (!value.asString()) {
            return std::nullopt;
        }
        named.parts.emplace_back(key, *value.asString());
    }
    return named;
}

Outcome<std::size_t> findNode(const std::vector<TargetNode>& nodes, const std::string& text,
                              std::string_view what, const std::string& account) {
    auto found = matches(nodes, text, asWritten);
    if (found.empty()) {
        found = matches(nodes, text, foldedCase);
    }
    if (found.size() == 1) {
        return found.front();
    }
    if (found.empty()) {
        return wrongUsage("\"saveTo\": there is no " + std::string(what) + " " + quoted(text) +
                              (nodes.empty() ? "." : "; there are " + listOf(nodes) + "."),
                          refreshCommand(account));
    }
    return wrongUsage("\"saveTo\": " + quoted(text) + " means several: " +
                          joined(found, ", ", [&](std::size_t index) { return nodes[index].id; }) +
                          "; give the identifier.",
                      refreshCommand(account));
}

const std::string* NamedTarget::find(std::string_view key) const {
    const auto part = std::ranges::find(parts, key, &std::pair<std::string, std::string>::first);
    return part == parts.end() ? nullptr : &part->second;
}

Outcome<TargetPath> findTarget(const TargetTree& tree, const NamedTarget& target, std::string_view otherKey,
                               const std::string& account) {
    if (target.parts.empty()) {
        return findTarget(tree, target.path, account, saveToOption);
    }
    if (!tree.kinds.empty()) {
        return findTargetOfKind(tree, target, account);
    }
    for (const auto& [key, name] : target.parts) {
        if (key != otherKey && std::ranges::find(tree.levels, key) == tree.levels.end()) {
            return wrongUsage("\"saveTo\" has no " + quoted(key) + ".", refreshCommand(account));
        }
    }
    TargetPath path;
    for (const auto& level : tree.levels) {
        const auto* name = target.find(level);
        if (!name) {
            return wrongUsage("\"saveTo\" needs its " + std::string(level) + ".", refreshCommand(account));
        }
        const auto index = findNode(nodesBelow(tree, path), *name, level, account);
        if (!index) {
            return failure(index.error());
        }
        path.push_back(*index);
    }
    return path;
}

std::optional<std::size_t> indexOf(const std::vector<TargetNode>& nodes, const JSONValue* part) {
    const auto* id = part ? part->find("id") : nullptr;
    if (!id || !id->asString()) {
        return std::nullopt;
    }
    return indexWithIdentifier(nodes, *id->asString());
}

std::optional<std::size_t> indexWithIdentifier(const std::vector<TargetNode>& nodes,
                                               std::string_view identifier) {
    const auto node = std::ranges::find(nodes, identifier, &TargetNode::id);
    return node == nodes.end() ? std::nullopt : std::optional(static_cast<std::size_t>(node - nodes.begin()));
}

std::optional<TargetPath> pathOf(const TargetTree& tree, const JSONValue& target) {
    TargetPath path;
    for (const auto& level : tree.levels) {
        const auto index = indexOf(nodesBelow(tree, path), target.find(level));
        if (!index) {
            return std::nullopt;
        }
        path.push_back(*index);
    }
    return path;
}

JSONObject namesOf(const TargetTree& tree, const TargetPath& path) {
    JSONObject names;
    TargetPath above;
    for (const auto index : path) {
        const auto& nodes = nodesBelow(tree, above);
        const auto kind = nodes.at(index).kind;
        names.set(kind.empty() ? tree.levels.at(above.size()) : kind, uniqueName(nodes, index));
        above.push_back(index);
    }
    return names;
}

const std::string& uniqueName(const std::vector<TargetNode>& nodes, std::size_t index) {
    const auto& node = nodes.at(index);
    return !node.name.empty() && matches(nodes, node.name, asWritten).size() == 1 ? node.name : node.id;
}

Outcome<void> checkKeys(const JSONObject& configuration, std::span<const std::string_view> known,
                        const std::string& file) {
    for (const auto& [key, value] : configuration) {
        if (std::ranges::find(known, key) == known.end()) {
            return wrongUsage(file + " has a key that the service does not know: " + quoted(key) +
                                  "; it knows " + joined(known, ", ") + ".",
                              "zelto config --help");
        }
    }
    return {};
}

void replaceMembers(JSONObject& configuration, const JSONObject& over) {
    for (const auto& [key, value] : over) {
        const auto* before = configuration.find(key);
        if (!value.isNull()) {
            configuration.set(key, value);
        } else if (key == attachmentsKey) {
            configuration.set(key, JSONObject{{"list", JSONValue::Array()}});
        } else if (before && before->asArray()) {
            configuration.set(key, JSONValue::Array());
        } else {
            configuration.erase(key);
        }
    }
}

} // namespace zelto::cli
