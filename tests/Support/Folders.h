#pragma once

#include <filesystem>

namespace zelto {

// Where this was built from, and into. Only their source knows the paths, so that what compiles the tests is
// the same in every checkout, and one compiler cache serves them all.
std::filesystem::path sourceFolder();
std::filesystem::path buildFolder();

} // namespace zelto
