#pragma once

#include <filesystem>

namespace zelto {

// The source and build folders. Only the source of this header contains the paths, so that test sources
// compile identically in every checkout, and all share one compiler cache.
std::filesystem::path sourceFolder();
std::filesystem::path buildFolder();

} // namespace zelto
