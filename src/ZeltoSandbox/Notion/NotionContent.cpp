#include <ZeltoSandbox/Notion/NotionContent.h>

#include <Platform/URL.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumLevels = 3; // of blocks in a request
constexpr auto anyLength = std::numeric_limits<std::size_t>::max();

constexpr std::string_view colors[] = {
    "default",
    "gray",
    "brown",
    "orange",
    "yellow",
    "green",
    "blue",
    "purple",
    "pink",
    "red",
    "gray_background",
    "brown_background",
    "orange_background",
    "yellow_background",
    "green_background",
    "blue_background",
    "purple_background",
    "pink_background",
    "red_background",
};

constexpr std::string_view styles[] = {"bold", "italic", "strikethrough", "underline", "code"};

// A kind of block and what it may hold.
struct BlockType {
    std::string_view name;
    bool hasText = true;
    bool hasChildren = true;
    bool hasCheck = false;
};

constexpr BlockType blockTypes[] = {
    {"paragraph"},
    {.name = "heading_1", .hasChildren = false},
    {.name = "heading_2", .hasChildren = false},
    {.name = "heading_3", .hasChildren = false},
    {"bulleted_list_item"},
    {"numbered_list_item"},
    {.name = "to_do", .hasCheck = true},
    {"toggle"},
    {"quote"},
    {.name = "divider", .hasText = false, .hasChildren = false},
};

std::vector<std::string_view> typeNames() {
    std::vector<std::string_view> names;
    std::ranges::transform(blockTypes, std::back_inserter(names), &BlockType::name);
    return names;
}

const BlockType& typeNamed(std::string_view name) {
    return *std::ranges::find(blockTypes, name, &BlockType::name);
}

bool isLinkAllowed(std::string_view text) {
    const auto url = URL::parse(text);
    if (!url) {
        return false;
    }
    const auto scheme = url->scheme();
    return scheme == "http" || scheme == "https" || scheme == "mailto" || scheme == "tel";
}

// The type that is named, or the first one that has content.
std::string typeOf(NotionCheck& check, const NotionField& block) {
    const auto names = typeNames();
    if (block.member("type").exists()) {
        return check.oneOf(block.member("type"), names, {});
    }
    std::string missing;
    for (const auto name : names) {
        if (block.member(name).exists()) {
            return std::string(name);
        }
        missing += " " + block.member(name).path() + " should be defined, instead was `undefined`.";
    }
    check.fail("body failed validation. Fix one:" + missing);
    return {};
}

} // namespace

JSONValue::Array NotionContent::richText(const NotionField& field) {
    JSONValue::Array items;
    const auto count = check_.array(field, maximumItems);
    for (std::size_t i = 0; i < count; ++i) {
        items.emplace_back(item(field.item(i)));
    }
    return items;
}

JSONObject NotionContent::item(const NotionField& field) {
    const auto text = field.member("text");
    if (!check_.object(field, {"type", "text", "annotations", "plain_text", "href"}) ||
        !check_.object(text, {"content", "link"})) {
        return {};
    }
    check_.oneOf(field.member("type"), {"text"}, "text");
    if (const auto plain = field.member("plain_text"); plain.exists()) {
        check_.text(plain, anyLength);
    }
    if (const auto href = field.member("href"); href.exists() && !href.isNull()) {
        check_.text(href, anyLength);
    }
    const auto content = check_.text(text.member("content"), maximumText);
    auto target = link(text.member("link"));
    const auto* url = target.find("url");
    auto href = url ? *url : JSONValue();
    return {{"type", "text"},
            {"text", JSONObject{{"content", content}, {"link", std::move(target)}}},
            {"annotations", annotations(field.member("annotations"))},
            {"plain_text", content},
            {"href", std::move(href)}};
}

JSONValue NotionContent::link(const NotionField& field) {
    if (!field.exists() || field.isNull() || !check_.object(field, {"type", "url"})) {
        return {};
    }
    check_.oneOf(field.member("type"), {"url"}, "url");
    const auto url = check_.text(field.member("url"), maximumText);
    if (!isLinkAllowed(url)) {
        check_.fail("Invalid URL for link.");
    }
    return JSONObject{{"url", url}};
}

JSONObject NotionContent::annotations(const NotionField& field) {
    if (field.exists()) {
        check_.object(field, {"bold", "italic", "strikethrough", "underline", "code", "color"});
    }
    JSONObject all;
    for (const auto style : styles) {
        all.set(style, check_.boolean(field.member(style), false));
    }
    all.set("color", check_.oneOf(field.member("color"), colors, "default"));
    return all;
}

JSONValue::Array NotionContent::blocks(const NotionField& field, std::size_t level) {
    JSONValue::Array all;
    const auto count = check_.array(field, maximumItems);
    for (std::size_t i = 0; i < count; ++i) {
        all.emplace_back(block(field.item(i), level));
    }
    return all;
}

JSONObject NotionContent::block(const NotionField& field, std::size_t level) {
    ++blockCount_;
    if (!field.value()->asObject()) {
        check_.failAt(field, "an object");
        return {};
    }
    const auto type = typeOf(check_, field);
    if (type.empty() || !check_.object(field, {"object", "type", type})) {
        return {};
    }
    check_.oneOf(field.member("object"), {"block"}, "block");
    return {{"type", type}, {type, blockContent(field.member(type), type, level)}};
}

JSONObject NotionContent::blockContent(const NotionField& field, std::string_view name, std::size_t level) {
    const auto& type = typeNamed(name);
    std::vector<std::string_view> members;
    if (type.hasText) {
        members = {"rich_text", "color"};
    }
    if (type.hasCheck) {
        members.push_back("checked");
    }
    if (type.hasChildren && level < maximumLevels) {
        members.push_back("children");
    }
    JSONObject content;
    if (!check_.object(field, members) || !type.hasText) {
        return content;
    }
    content.set("rich_text", richText(field.member("rich_text")));
    content.set("color", check_.oneOf(field.member("color"), colors, "default"));
    if (type.hasCheck) {
        content.set("checked", check_.boolean(field.member("checked"), false));
    }
    if (const auto children = field.member("children"); children.exists()) {
        content.set("children", blocks(children, level + 1));
    }
    return content;
}

std::string notionPlainText(const JSONValue::Array& richText) {
    std::string text;
    for (const auto& item : richText) {
        text += *item.find("plain_text")->asString();
    }
    return text;
}

JSONValue::Array notionRichText(std::string_view text) {
    JSONValue request(JSONValue::Array{JSONObject{{"text", JSONObject{{"content", text}}}}});
    NotionCheck check;
    return NotionContent(check).richText(NotionField(request));
}

} // namespace zelto::sandbox
