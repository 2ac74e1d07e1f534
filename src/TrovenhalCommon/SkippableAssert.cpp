#include <TrovenhalCommon/SkippableAssert.h>

#include <ZeltoCommonLogger/Logger.h>

namespace zelto {

bool skippableAssert(bool condition, std::string_view message, const std::source_location& location) {
    if (!condition) {
        Logger::shared().error(message, location.function_name(), location);
    }
    return condition;
}

} // namespace zelto
