#include <Platform/JSON/JSONCases.h>

namespace zelto {

std::pair<std::string_view, JSONReader> readCase(const JSONReader& reader) {
    const auto members = reader.members();
    if (reader.count() != 1) {
        reader.fail("Invalid number of keys found, expected one.");
    }
    return *members.begin();
}

void failUnknownCase(const JSONReader& reader, std::span<const std::string_view> names) {
    std::string text;
    for (const auto name : names) {
        text.append(text.empty() ? "expected one of the keys \"" : ", \"").append(name).append("\"");
    }
    reader.fail(text + ", found another");
}

void readNoPayload(const JSONReader& reader) {
    if (reader.kind() != JSONKind::object && !reader.isNull()) {
        reader.failMismatch("an object");
    }
}

} // namespace zelto
