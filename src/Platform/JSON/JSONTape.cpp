#include <Platform/JSON/JSONTape.h>

#include <Platform/ASCII.h>

#include <algorithm>

namespace zelto {

namespace {

constexpr std::size_t maximumKeyLengthInPath = 64;

bool isPlain(char c) {
    return isASCIIAlphanumeric(c) || c == '_' || c == '-' || c == '.' || c == '@' || c == '$';
}

} // namespace

std::string_view nameOf(JSONKind kind) {
    switch (kind) {
    case JSONKind::null:
        return "null";
    case JSONKind::boolean:
        return "a boolean";
    case JSONKind::int64:
    case JSONKind::uint64:
    case JSONKind::real:
        return "a number";
    case JSONKind::string:
        return "a string";
    case JSONKind::array:
        return "an array";
    case JSONKind::object:
        return "an object";
    }
    return {};
}

void appendKeyToPath(std::string& path, std::string_view key) {
    const auto shown = key.substr(0, maximumKeyLengthInPath);
    if (!key.empty() && std::ranges::all_of(shown, isPlain)) {
        path.append(path.empty() ? "" : ".").append(shown);
    } else {
        path += "[\"";
        for (const char c : shown) {
            path += c >= ' ' && c <= '~' && c != '"' && c != '\\' ? c : '?';
        }
        path += "\"]";
    }
    if (shown.size() != key.size()) {
        path += "...";
    }
}

void appendIndexToPath(std::string& path, std::size_t index) {
    path += '[';
    path += std::to_string(index);
    path += ']';
}

std::string JSONTape::pathOf(const JSONNode* value) const {
    std::string path;
    for (const auto* container = root(); container != value;) {
        const bool isObject = container->kind == JSONKind::object;
        const auto* child = container + 1;
        const JSONNode* inner = child + (isObject ? 1 : 0);
        std::size_t index = 0;
        while (inner->next() <= value) {
            child = inner->next();
            inner = child + (isObject ? 1 : 0);
            ++index;
        }
        if (isObject) {
            appendKeyToPath(path, child->text());
        } else {
            appendIndexToPath(path, index);
        }
        container = inner;
    }
    return path;
}

} // namespace zelto
