#include "export/services/NotionAdapter.h"

#include <Platform/JSON/JSONValue.h>
#include <Platform/Text.h>
#include <Platform/URL.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <string_view>
#include <utility>

namespace zelto::cli {

namespace {

// In UTF-16 units, as the service counts.
constexpr std::size_t maximumText = 2000;
constexpr std::size_t maximumLink = 2000;

constexpr std::uint64_t maximumRequest = 500'000; // bytes
constexpr std::size_t maximumListed = 100;        // databases

// A member of a member of an object, and so on; null where there is none.
const JSONValue* find(const JSONValue& value, std::initializer_list<std::string_view> keys) {
    const auto* found = &value;
    for (const auto key : keys) {
        found = found ? found->find(key) : nullptr;
    }
    return found;
}

void addText(const JSONValue* text, std::vector<std::string>& texts) {
    if (text && text->asString()) {
        texts.push_back(*text->asString());
    }
}

const JSONValue::Array& arrayOf(const JSONValue* value) {
    static const JSONValue::Array none;
    return value && value->asArray() ? *value->asArray() : none;
}

// What the service has limits for, of the request that makes a page.
struct PageTexts {
    std::vector<std::string> titles;
    std::vector<std::string> texts;
    std::vector<std::string> links;

    static PageTexts of(const SentRequest& request);

  private:
    void add(const JSONValue& block);
};

PageTexts PageTexts::of(const SentRequest& request) {
    PageTexts all;
    const auto body = JSONValue::parse(request.text.value_or(""));
    if (!body) {
        return all;
    }
    for (const auto& item : arrayOf(find(*body, {"properties", "title", "title"}))) {
        addText(find(item, {"text", "content"}), all.titles);
    }
    for (const auto& block : arrayOf(body->find("children"))) {
        all.add(block);
    }
    return all;
}

void PageTexts::add(const JSONValue& block) {
    const auto* type = block.find("type");
    if (!type || !type->asString()) {
        return;
    }
    for (const auto& item : arrayOf(find(block, {*type->asString(), "rich_text"}))) {
        addText(find(item, {"text", "content"}), texts);
        addText(find(item, {"text", "link", "url"}), links);
    }
}

// The greatest length, in UTF-16 units.
std::size_t maximumLength(const std::vector<std::string>& texts) {
    std::size_t length = 0;
    for (const auto& text : texts) {
        length = std::max(length, utf16Length(text));
    }
    return length;
}

bool isTakenAsLink(std::string_view text) {
    constexpr std::string_view schemes[] = {"http", "https", "mailto", "tel"};
    const auto url = URL::parse(text);
    return url && std::ranges::find(schemes, url->scheme()) != std::end(schemes);
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

std::vector<std::string> NotionAdapter::refusals(const std::vector<SentRequest>& requests) {
    std::vector<std::string> sentences;
    for (const auto& request : requests) {
        for (const auto& link : PageTexts::of(request).links) {
            if (!isTakenAsLink(link)) {
                sentences.push_back("Notion would refuse the link " + link +
                                    ": it takes links by http, https, mailto and tel alone.");
            }
        }
    }
    return sentences;
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
        const auto page = PageTexts::of(request);
        limits.check("the page's title", maximumLength(page.titles), maximumText, units);
        limits.check("a text of the page", maximumLength(page.texts), maximumText, units);
        limits.check("a link of the page", maximumLength(page.links), maximumLink, units);
        limits.check("the request", request.bodySize, maximumRequest, "bytes");
    }
    return limits.passed();
}

} // namespace zelto::cli
