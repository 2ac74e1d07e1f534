#include "export/services/OneNoteAdapter.h"

#include <cstdint>

namespace zelto::cli {

namespace {

// Of one request. https://learn.microsoft.com/graph/onenote-images-files
constexpr std::uint64_t partCountLimit = 6;
constexpr std::uint64_t partSizeLimit = 25'000'000;
constexpr std::uint64_t requestSizeLimit = 70'000'000;

std::string nameOf(const SentPart& part) {
    return part.name == "Presentation" ? "the page"
                                       : "the file \"" + part.fileName.value_or(part.name) + "\"";
}

} // namespace

std::vector<UnusedOption> OneNoteAdapter::unusedOptions(IntegrationExportContentType type) {
    using enum IntegrationExportContentType;
    if (type == emailBacklink || type == mtSummaryBacklink) {
        return {{"--title", "the page has the message's own title"}};
    }
    if (type == externalLink) {
        return {{"--note", "the page is the link alone"}};
    }
    return {};
}

TargetTree OneNoteAdapter::targetTree(const OneNoteFullData& data) {
    TargetTree tree{.levels = {"notebook", "section"}, .nodes = {}};
    for (const auto& notebook : data.notebooks) {
        auto& node = tree.nodes.emplace_back(TargetNode{notebook.id, notebook.name.value_or("")});
        for (const auto& section : notebook.sections) {
            node.children.push_back({section.id, section.name.value_or("")});
        }
    }
    return tree;
}

void OneNoteAdapter::setTarget(OneNoteExportConfiguration& configuration, const OneNoteFullData& data,
                               const TargetPath& path) {
    const auto& notebook = data.notebooks.at(path.at(0));
    configuration.saveTo =
        OneNoteSaveToInfo{.notebook = notebook, .section = notebook.sections.at(path.at(1))};
}

std::string OneNoteAdapter::targetName(const OneNoteExportConfiguration& configuration) {
    if (!configuration.saveTo) {
        return {};
    }
    const auto& [notebook, section] = *configuration.saveTo;
    return nameOrIdentifier(notebook.name, notebook.id) + "/" + nameOrIdentifier(section.name, section.id);
}

std::string OneNoteAdapter::standInResponse(const SentRequest& /*request*/) {
    return R"({"id":"NEW-PAGE"})";
}

std::vector<PassedLimit> OneNoteAdapter::passedLimits(const OneNoteExporter&,
                                                      const OneNoteExportConfiguration&,
                                                      const std::vector<SentRequest>& requests) {
    LimitCheck limits;
    for (const auto& request : requests) {
        limits.check("the page with its files", request.parts.size(), partCountLimit, "parts");
        limits.check("the page with its files", request.bodySize, requestSizeLimit, "bytes");
        for (const auto& part : request.parts) {
            limits.check(nameOf(part), part.size, partSizeLimit, "bytes");
        }
    }
    return limits.passed();
}

} // namespace zelto::cli
