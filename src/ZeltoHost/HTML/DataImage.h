#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// A data: URL of an image in a raster format, without white space; `nullopt` for any other address. Vector
// images are excluded, since they could refer to others.
std::optional<std::string> rasterDataURL(std::string_view address);

} // namespace zelto
