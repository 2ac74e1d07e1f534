#include <Platform/JSON/JSONValue.h>

#include <Platform/UTF8.h>

#include <cmath>
#include <limits>
#include <new>

namespace zelto {

namespace {

constexpr std::size_t maximumNodes = std::numeric_limits<std::uint32_t>::max();

// The number of nodes of a value's tape; 0 if it has no JSON.
std::size_t nodesOf(const JSONValue& value, int depth = 0) {
    if (depth > jsonDepthLimit) {
        return 0;
    }
    const auto fits = [](const std::string& text) { return text.size() < maximumNodes && isValidUTF8(text); };
    std::size_t count = 1;
    if (const auto* text = value.asString()) {
        return fits(*text) ? 1 : 0;
    }
    if (const auto* array = value.asArray()) {
        for (const auto& each : *array) {
            const auto inner = nodesOf(each, depth + 1);
            if (inner == 0) {
                return 0;
            }
            count += inner;
        }
        return depth < jsonDepthLimit ? count : 0;
    }
    if (const auto* object = value.asObject()) {
        for (const auto& [key, each] : *object) {
            const auto inner = nodesOf(each, depth + 1);
            if (inner == 0 || !fits(key)) {
                return 0;
            }
            count += 1 + inner;
        }
        return depth < jsonDepthLimit ? count : 0;
    }
    if (value.kind() == JSONKind::real) {
        return value.writtenNumber() || std::isfinite(*value.asDouble()) ? 1 : 0;
    }
    return 1;
}

void setText(JSONNode& node, JSONKind kind, std::string_view text) {
    node.kind = kind;
    node.size = static_cast<std::uint32_t>(text.size());
    node.string = text.data();
}

void setReal(JSONNode& node, const JSONValue& value) {
    if (const auto* written = value.writtenNumber()) {
        return setText(node, JSONKind::real, *written);
    }
    node.size = 0;
    node.real = *value.asDouble();
}

// Gives the node after the value.
JSONNode* write(JSONNode* node, const JSONValue& value) {
    auto* const first = node++;
    first->kind = value.kind();
    switch (value.kind()) {
    case JSONKind::null:
        break;
    case JSONKind::boolean:
        first->boolean = *value.asBool();
        break;
    case JSONKind::int64:
        first->int64 = *value.asInt64();
        break;
    case JSONKind::uint64:
        first->uint64 = *value.asUInt64();
        break;
    case JSONKind::real:
        setReal(*first, value);
        break;
    case JSONKind::string:
        setText(*first, JSONKind::string, *value.asString());
        break;
    case JSONKind::array:
        first->count = value.asArray()->size();
        for (const auto& each : *value.asArray()) {
            node = write(node, each);
        }
        first->size = static_cast<std::uint32_t>(node - first);
        break;
    case JSONKind::object:
        first->count = value.asObject()->size();
        for (const auto& [key, each] : *value.asObject()) {
            setText(*node, JSONKind::string, key);
            node = write(node + 1, each);
        }
        first->size = static_cast<std::uint32_t>(node - first);
        break;
    }
    return node;
}

} // namespace

std::optional<JSONTape> JSONTape::of(const JSONValue& value) {
    const auto count = nodesOf(value);
    if (count == 0 || count > maximumNodes) {
        return std::nullopt;
    }
    JSONTape tape;
    tape.nodes_.reset(static_cast<JSONNode*>(std::malloc(count * sizeof(JSONNode))));
    if (!tape.nodes_) {
        throw std::bad_alloc();
    }
    write(tape.nodes_.get(), value);
    return tape;
}

} // namespace zelto
