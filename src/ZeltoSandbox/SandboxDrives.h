#pragma once

#include <Platform/Date.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace zelto {

// What the cloud drives have beside their demo files, and how they behave.
struct SandboxDrives {
    static constexpr std::size_t maximumAdditionalCount = 20'000;

    // In the root: folders "Additional folder 1" and so on.
    std::size_t additionalFolders = 0;
    // In the folder "Additional files", which exists while there are any: "Additional file 1.txt" and so on,
    // each with its own name as its text.
    std::size_t additionalFiles = 0;
    // After this time a search finds what was uploaded.
    TimeInterval searchDelay{0};
    // Bytes of all files; an upload that does not fit is refused. nullopt: unlimited.
    std::optional<std::uint64_t> space;

    bool operator==(const SandboxDrives&) const = default;
};

} // namespace zelto
