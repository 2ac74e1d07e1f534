#include "export/services/EvernoteAdapter.h"

#include <ZeltoIntegrations/Evernote/EvernoteConstants.h>

#include <Platform/Text.h>

#include <algorithm>
#include <utility>

namespace zelto::cli {

namespace {

constexpr std::size_t maximumTitle = 255;   // UTF-16 units
constexpr std::size_t maximumTag = 100;     // UTF-16 units
constexpr std::size_t maximumTags = 100;    // of one note
constexpr std::size_t maximumSource = 4096; // UTF-16 units

constexpr auto units = "UTF-16 units";

// One that the account does not have is made by its name.
EvernoteTag tagNamed(const std::string& name, const std::vector<EvernoteTag>& known) {
    const auto tag = std::ranges::find_if(
        known, [&](const EvernoteTag& each) { return foldedCase(each.name) == foldedCase(name); });
    return tag == known.end() ? EvernoteTag{.id = "", .name = name} : *tag;
}

std::uint64_t totalSize(const IntegrationAttachments& attachments) {
    std::uint64_t size = 0;
    for (const auto& each : attachments.selected()) {
        size += static_cast<std::uint64_t>(std::max<std::int64_t>(each.size, 0));
    }
    return size;
}

} // namespace

EditableFields EvernoteAdapter::fields(EvernoteExportConfiguration& configuration) {
    EditableFields fields;
    fields.saveAs = &configuration.saveAs;
    fields.title = &configuration.userTitle;
    fields.note = &configuration.remark;
    fields.attachments = &configuration.attachments;
    return fields;
}

TargetTree EvernoteAdapter::targetTree(const EvernoteData& data) {
    TargetTree tree{.levels = {"notebook"}, .nodes = {}};
    for (const auto& notebook : data.notebooks) {
        tree.nodes.push_back({notebook.id, notebook.name});
    }
    return tree;
}

void EvernoteAdapter::setTarget(EvernoteExportConfiguration& configuration, const EvernoteData& data,
                                const TargetPath& path) {
    configuration.saveTo = data.notebooks.at(path.at(0));
}

std::string EvernoteAdapter::targetName(const EvernoteExportConfiguration& configuration) {
    const auto& notebook = configuration.saveTo;
    return notebook ? nameOrIdentifier(notebook->name, notebook->id) : std::string();
}

void EvernoteAdapter::setTags(EvernoteExportConfiguration& configuration,
                              const std::optional<EvernoteData>& data,
                              const std::vector<std::string>& names) {
    const auto known = data ? data->tags : std::vector<EvernoteTag>();
    configuration.tags.clear();
    for (const auto& name : names) {
        configuration.tags.push_back(tagNamed(name, known));
    }
}

std::optional<EvernoteData> EvernoteAdapter::keptData(const EvernoteExporter& exporter) {
    auto user = exporter.cachedUser();
    auto notebooks = exporter.cachedNotebooks();
    auto tags = exporter.cachedTags();
    if (!user || !notebooks || !tags) {
        return std::nullopt;
    }
    return EvernoteData{*std::move(user), *std::move(notebooks), *std::move(tags)};
}

std::vector<PassedLimit> EvernoteAdapter::passedLimits(const EvernoteExporter& exporter,
                                                       const EvernoteExportConfiguration& configuration,
                                                       const std::vector<SentRequest>& /*requests*/) {
    const auto user = exporter.cachedUser();
    const auto ofFiles = user && user->premium ? EvernoteConstants::totalAttachmentsSizeLimitOfPremiumUser
                                               : EvernoteConstants::totalAttachmentsSizeLimitOfFreeUser;
    LimitCheck limits;
    limits.check("the note's title", utf16Length(configuration.userTitle.value_or("")), maximumTitle, units);
    limits.check("the list of tags", configuration.tags.size(), maximumTags, "tags");
    for (const auto& tag : configuration.tags) {
        limits.check("the tag's name", utf16Length(tag.name), maximumTag, units);
    }
    if (configuration.saveAs == IntegrationExportContentType::externalLink) {
        limits.check("the link", utf16Length(configuration.externalLink.value_or("")), maximumSource, units);
    }
    limits.check("the files of the note", totalSize(configuration.attachments),
                 static_cast<std::uint64_t>(ofFiles), "bytes");
    return limits.passed();
}

} // namespace zelto::cli
