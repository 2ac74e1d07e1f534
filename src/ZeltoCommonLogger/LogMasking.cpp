#include <ZeltoCommonLogger/LogMasking.h>

namespace zelto {

std::string maskSecrets(std::string_view text) {
    return std::string(text);
}

} // namespace zelto
