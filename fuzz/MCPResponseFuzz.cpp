// A server's response: reading it in place and from a copy gives the same, and every record that a result may
// be is read back from what it wrote.

#include "Require.h"

#include <ZeltoIntegrations/MCP/MCPDecodingInternal.h>
#include <ZeltoIntegrations/MCP/MCPInitialize.h>

namespace zelto {
namespace {

template <class T> void checkRecord(const JSONValue& result) {
    const auto record = decodedBy([&] { return result.as<T>(); });
    // By way of text it must be the same.
    const auto text = result.text();
    require(text.has_value());
    const auto again = decodedBy([&] { return JSONDecoder().decode<T>(*text); });
    require(record.has_value() == again.has_value());
    if (!record) {
        return;
    }
    require(*record == *again);
    const auto written = JSONEncoder().encode(*record);
    require(written.has_value());
    const auto back = decodedBy([&] { return JSONDecoder().decode<T>(*written); });
    require(back.has_value() && *back == *record && JSONEncoder().encode(*back) == written);
}

} // namespace
} // namespace zelto

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zelto;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string copy(text);
    const auto response = decodedBy([&] { return JSONDecoder().decode<MCPResponse>(text); });
    const auto inPlace = decodedBy([&] { return JSONDecoder().decodeInPlace<MCPResponse>(copy); });
    require(response.has_value() == inPlace.has_value());
    require(!response || *response == *inPlace);
    static_cast<void>(decodedBy([&] { return JSONDecoder().decode<MCPRequestIDEnvelope>(text); }));
    if (response && response->result) {
        checkRecord<MCPInitializeResult>(*response->result);
        checkRecord<MCPToolListResult>(*response->result);
        checkRecord<MCPToolCallResult>(*response->result);
    }
    return 0;
}
