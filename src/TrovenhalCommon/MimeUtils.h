#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

struct MimeUtils {
    MimeUtils() = delete;

    // The media type of an extension ("pdf", in any case, without its dot); `nullopt` for an unknown one.
    static std::optional<std::string> mime(std::string_view extension);
};

} // namespace zelto
