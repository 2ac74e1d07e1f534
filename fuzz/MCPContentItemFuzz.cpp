// A content item that was read is written so that it reads as the same; one of an unknown type is written
// unchanged.

#include <ZeltoIntegrations/MCP/MCPContentItem.h>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zelto;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto item = JSONDecoder().decode<MCPContentItem>(text);
    if (!item) {
        return 0;
    }
    const auto written = JSONEncoder().encode(*item);
    const auto again = written ? JSONDecoder().decode<MCPContentItem>(*written) : item;
    if (!written || !again || *again != *item || JSONEncoder().encode(*again) != written) {
        std::abort();
    }
    if (std::holds_alternative<MCPContentItem::Unknown>(item->value) &&
        JSONValue::parse(text)->text() != written) {
        std::abort();
    }
    return 0;
}
