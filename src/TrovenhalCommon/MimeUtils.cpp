#include <TrovenhalCommon/MimeUtils.h>

#include <Platform/MediaTypes.h>

namespace zelto {

std::optional<std::string> MimeUtils::mime(std::string_view extension) {
    const auto type = mediaTypeForExtension(extension);
    return type ? std::optional<std::string>(*type) : std::nullopt;
}

} // namespace zelto
