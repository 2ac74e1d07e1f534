#include "commandline/ProgressOption.h"

namespace zelto::cli {

ProgressStyle progressStyle(const Invocation& invocation) {
    const auto style = invocation.value("--progress");
    if (style == "json") {
        return ProgressStyle::json;
    }
    return style == "none" || invocation.has("--quiet") ? ProgressStyle::none : ProgressStyle::bar;
}

} // namespace zelto::cli
