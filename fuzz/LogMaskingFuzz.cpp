#include <Platform/PercentEncoding.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>
#include <TrovenhalCommon/Regexp/LVXRegexpManager.h>
#include <ZeltoCommonLogger/LogLine.h>
#include <ZeltoCommonLogger/LogMasking.h>
#include <ZeltoCommonLogger/SecretRegistry.h>

#include <cstdint>
#include <cstdlib>

using namespace zelto;

namespace {

constexpr std::string_view secret = "canary secret=1+/";
constexpr std::string_view secretInBase64 = "Y2FuYXJ5IHNlY3JldD0xKy8";

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

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

void checkPatterns(std::string_view text) {
    for (const auto pattern : {LVXRegexpPatterns::email, LVXRegexpPatterns::phoneNumber}) {
        std::size_t end = 0;
        for (const auto& match : LVXRegexpManager::matches(pattern, text)) {
            const auto begin = static_cast<std::size_t>(match.text.data() - text.data());
            require(!match.text.empty() && begin >= end);
            require(match.utf16Location == utf16Length(text.substr(0, begin)));
            end = begin + match.text.size();
        }
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
    checkPatterns(text);
    return 0;
}
