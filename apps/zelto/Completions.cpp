#include "Completions.h"

namespace zelto::cli {

std::string completionsFor(std::string_view) {
    return {};
}

} // namespace zelto::cli
