#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// A data: URL of an image in a raster format, white space taken out; nothing for any other address. A vector
// image could refer to others.
std::optional<std::string> rasterDataURL(std::string_view address);

} // namespace zelto
