#include "export/services/NotionAdapter.h"

#include <Platform/JSON/JSONValue.h>
#include <Platform/Text.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace zelto::cli {

namespace {

// In UTF-16 units, as the service counts.
constexpr std::size_t maximumText = 2000;
constexpr std::size_t maximumLink = 2000;

constexpr std::uint64_t maximumRequest = 500'000; // bytes
constexpr std::size_t maximumListed = 100;        // databases

// The greatest lengths in a request, in UTF-16 units.
struct Lengths {
    std::size_t title = 0;
    std::size_t text = 0;
    std::size_t link = 0;
};

// A member of a member of an object, and so on; null where there is none.
const JSONValue* find(const JSONValue& value, std::initializer_list<std::string_view> keys) {
    const auto* found = &value;
    for (const auto key : keys) {
        found = found ? found->find(key) : nullptr;
    }
    return found;
}

std::size_t lengthOf(const JSONValue* text) {
    return text && text->asString() ? utf16Length(*text->asString()) : 0;
}

const JSONValue::Array& arrayOf(const JSONValue* value) {
    static const JSONValue::Array none;
    return value && value->asArray() ? *value->asArray() : none;
}

void measureBlock(const JSONValue& block, Lengths& lengths) {
    const auto* type = block.find("type");
    if (!type || !type->asString()) {
        return;
    }
    for (const auto& item : arrayOf(find(block, {*type->asString(), "rich_text"}))) {
        lengths.text = std::max(lengths.text, lengthOf(find(item, {"text", "content"})));
        lengths.link = std::max(lengths.link, lengthOf(find(item, {"text", "link", "url"})));
    }
}

Lengths lengthsIn(const SentRequest& request) {
    Lengths lengths;
    const auto body = JSONValue::parse(request.text.value_or(""));
    if (!body) {
        return lengths;
    }
    for (const auto& item : arrayOf(find(*body, {"properties", "title", "title"}))) {
        lengths.title = std::max(lengths.title, lengthOf(find(item, {"text", "content"})));
    }
    for (const auto& block : arrayOf(body->find("children"))) {
        measureBlock(block, lengths);
    }
    return lengths;
}

} // namespace

TargetTree NotionAdapter::targetTree(const NotionFullData& data) {
    TargetTree tree{.levels = {"database"}, .nodes = {}};
    for (const auto& database : data.databases) {
        tree.nodes.push_back({database.id, database.title});
    }
    return tree;
}

void NotionAdapter::setTarget(NotionExportConfiguration& configuration, const NotionFullData& data,
                              const TargetPath& path) {
    configuration.saveTo = NotionSaveToInfo::journal(data.databases.at(path.at(0)));
}

std::string NotionAdapter::targetName(const NotionExportConfiguration& configuration) {
    if (!configuration.saveTo) {
        return {};
    }
    const auto& database = configuration.saveTo->parent();
    return nameOrIdentifier(database.title, database.id);
}

const JSONValue* NotionAdapter::levelsIn(const JSONValue& saveTo) {
    return saveTo.find("journal");
}

std::string NotionAdapter::moreTargets(const NotionExporter& exporter, const NotionFullData& data,
                                       bool isFresh) {
    // Whether there were more is not kept with the databases.
    const bool isLikely = isFresh ? exporter.hasMoreDatabases() : data.databases.size() >= maximumListed;
    return isLikely ? std::string("Notion ") + (isFresh ? "has" : "may have") +
                          " more databases; it lists those that were edited last. Edit a missing one there, "
                          "and list them again with --refresh."
                    : std::string();
}

std::optional<NotionFullData> NotionAdapter::keptData(const NotionExporter& exporter) {
    auto me = exporter.me();
    auto databases = exporter.databases();
    if (!me || !databases) {
        return std::nullopt;
    }
    return NotionFullData{.me = *std::move(me), .databases = *std::move(databases)};
}

std::string NotionAdapter::standInResponse(const SentRequest& /*request*/) {
    return R"({"object":"page","id":"NEW-PAGE"})";
}

std::vector<PassedLimit> NotionAdapter::passedLimits(const NotionExporter& /*exporter*/,
                                                     const NotionExportConfiguration& /*configuration*/,
                                                     const std::vector<SentRequest>& requests) {
    constexpr auto units = "UTF-16 units";
    LimitCheck limits;
    for (const auto& request : requests) {
        const auto lengths = lengthsIn(request);
        limits.check("the page's title", lengths.title, maximumText, units);
        limits.check("a text of the page", lengths.text, maximumText, units);
        limits.check("a link of the page", lengths.link, maximumLink, units);
        limits.check("the request", request.bodySize, maximumRequest, "bytes");
    }
    return limits.passed();
}

} // namespace zelto::cli
