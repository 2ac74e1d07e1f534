#include "Require.h"

#include <Platform/PercentEncoding.h>
#include <Platform/UTF8.h>
#include <ZeltoCommonLogger/LogLine.h>
#include <ZeltoCommonLogger/LogMasking.h>
#include <ZeltoCommonLogger/SecretRegistry.h>

#include <cstdint>

using namespace zelto;

namespace {

constexpr std::string_view secret = "canary secret=1+/";
constexpr std::string_view secretInBase64 = "Y2FuYXJ5IHNlY3JldD0xKy8";

// A secret is masked in every form, whatever the text around it.
void checkSecret(std::string_view before, std::string_view after) {
    const std::string forms[] = {std::string(secret), std::string(secretInBase64),
                                 percentEncode(secret).value()};
    for (const auto& form : forms) {
        const auto masked = maskSecrets(std::string(before).append(form).append(after));
        const auto whole = std::string(before).append(after);
        require(masked.find(form) == std::string::npos || whole.find(form) != std::string::npos);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto registration = SecretRegistry::shared().add(secret);
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    checkSecret(text.substr(0, size / 2), text.substr(size / 2));
    LogRecord record;
    record.message = maskSecrets(text);
    const auto line = logLine(record);
    require(isValidUTF8(line));
    require(line.find_first_of("\r\n\x1b") == std::string::npos);
    return 0;
}
