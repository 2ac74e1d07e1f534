#pragma once

#include "base/Outcome.h"

#include <filesystem>

namespace zelto::cli {

// Makes the folder, and those above it, where they are missing. Fails if no file can be put into it.
Outcome<void> prepareFolder(const std::filesystem::path& folder);

} // namespace zelto::cli
