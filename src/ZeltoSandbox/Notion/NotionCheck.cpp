#include <ZeltoSandbox/Notion/NotionCheck.h>

#include <Platform/ASCII.h>
#include <Platform/Text.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumShownValue = 200; // bytes
constexpr std::size_t identifierDigits = 32;

std::string inTicks(std::string_view text) {
    return "`" + std::string(text) + "`";
}

std::string shown(const JSONValue* value) {
    if (!value) {
        return inTicks("undefined");
    }
    const auto text = value->text().value_or("");
    const auto beginning = prefixBytes(text, maximumShownValue);
    return inTicks(std::string(beginning) + (beginning.size() < text.size() ? "…" : ""));
}

// "`a`, `b`, or `c`"
std::string listed(std::span<const std::string_view> names) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) {
            text += names.size() == 2 ? " or " : i + 1 == names.size() ? ", or " : ", ";
        }
        text += inTicks("\"" + std::string(names[i]) + "\"");
    }
    return text;
}

// The 32 digits, with or without dashes; nullopt for anything else.
std::optional<std::string> identifierOf(std::string_view text) {
    std::string id;
    for (const char c : toASCIILower(text)) {
        const bool isDigit = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
        if (isDigit && (id.size() == 8 || id.size() == 13 || id.size() == 18 || id.size() == 23)) {
            id.push_back('-');
        }
        if (isDigit) {
            id.push_back(c);
        }
    }
    const auto without = identifierDigits + 4;
    const bool fits =
        id.size() == without && (equalIgnoringASCIICase(text, id) || text.size() == identifierDigits);
    return fits ? std::optional(id) : std::nullopt;
}

} // namespace

NotionField NotionField::member(std::string_view key) const {
    return {path_ + "." + std::string(key), value_ ? value_->find(key) : nullptr};
}

NotionField NotionField::item(std::size_t index) const {
    const auto* items = value_ ? value_->asArray() : nullptr;
    return {path_ + "[" + std::to_string(index) + "]",
            items && index < items->size() ? &(*items)[index] : nullptr};
}

void NotionCheck::fail(NotionError error) {
    if (!problem_) {
        problem_ = std::move(error);
    }
}

void NotionCheck::failAt(const NotionField& field, std::string_view expectation) {
    fail("body failed validation: " + field.path() + " should be " + std::string(expectation) +
         ", instead was " + shown(field.value()) + ".");
}

void NotionCheck::failAtLength(const NotionField& field, std::size_t limit, std::size_t length) {
    fail("body failed validation: " + field.path() + ".length should be ≤ " + inTicks(std::to_string(limit)) +
         ", instead was " + inTicks(std::to_string(length)) + ".");
}

bool NotionCheck::object(const NotionField& field, std::span<const std::string_view> members) {
    if (!field.exists()) {
        failAt(field, "defined");
        return false;
    }
    const auto* object = field.value()->asObject();
    if (!object) {
        failAt(field, "an object");
        return false;
    }
    for (const auto& [key, value] : *object) {
        if (std::ranges::find(members, key) == members.end()) {
            failAt(field.member(key), "not present");
            return false;
        }
    }
    return true;
}

std::size_t NotionCheck::array(const NotionField& field, std::size_t limit) {
    const auto* items = field.exists() ? field.value()->asArray() : nullptr;
    if (!items) {
        failAt(field, field.exists() ? "an array" : "defined");
        return 0;
    }
    if (items->size() > limit) {
        failAtLength(field, limit, items->size());
        return 0;
    }
    return items->size();
}

std::string NotionCheck::text(const NotionField& field, std::size_t limit) {
    const auto* text = field.exists() ? field.value()->asString() : nullptr;
    if (!text) {
        failAt(field, field.exists() ? "a string" : "defined");
        return {};
    }
    if (const auto length = utf16Length(*text); length > limit) {
        failAtLength(field, limit, length);
        return {};
    }
    return *text;
}

bool NotionCheck::boolean(const NotionField& field, bool absent) {
    if (!field.exists()) {
        return absent;
    }
    const auto value = field.value()->asBool();
    if (!value) {
        failAt(field, "a boolean or `undefined`");
    }
    return value.value_or(absent);
}

std::string NotionCheck::oneOf(const NotionField& field, std::span<const std::string_view> names,
                               std::string_view absent) {
    if (!field.exists() && !absent.empty()) {
        return std::string(absent);
    }
    const auto* name = field.exists() ? field.value()->asString() : nullptr;
    if (!name || std::ranges::find(names, *name) == names.end()) {
        failAt(field, listed(names));
        return std::string(absent);
    }
    return *name;
}

std::uint64_t NotionCheck::number(const NotionField& field, std::uint64_t limit, std::uint64_t absent) {
    if (!field.exists()) {
        return absent;
    }
    const auto value = field.value()->asUInt64();
    if (!value) {
        failAt(field, "a number or `undefined`");
    } else if (*value > limit) {
        failAt(field, "≤ " + inTicks(std::to_string(limit)));
    }
    return value && *value <= limit ? *value : absent;
}

std::string NotionCheck::identifier(const NotionField& field) {
    const auto* text = field.exists() ? field.value()->asString() : nullptr;
    const auto id = text ? identifierOf(*text) : std::nullopt;
    if (!id) {
        failAt(field, !field.exists() ? "defined" : !text ? "a string" : "a valid uuid");
    }
    return id.value_or("");
}

} // namespace zelto::sandbox
