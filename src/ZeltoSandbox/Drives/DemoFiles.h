#pragma once

#include <Platform/Date.h>
#include <ZeltoSandbox/Drives/Drive.h>

namespace zelto::sandbox {

// Of everything that a drive has at the start: 2026-01-05T08:00:00Z.
inline constexpr Date demoDate = Date::fromUnixSeconds(1'767'600'000);

// The folders and files that both drives have at the start: nested folders, an empty one, names outside
// ASCII, a file in the trash, one with two revisions, and what a browser shows: a PDF, a picture, texts and
// HTML. Services add what they alone have to the folder "Projects", which is returned.
DriveEntry& addDemoFiles(Drive& drive);

SpoolRange demoContent(std::string bytes);

} // namespace zelto::sandbox
