#pragma once

#include <ZeltoSandbox/SandboxService.h>

#include <ZeltoSandbox/Drives/Drive.h>

namespace zelto::sandbox {

// What `files/upload` does: makes a file, a new revision of one, or nothing where the same content is there.
SandboxResponse uploadToDropbox(Drive& drive, const SandboxSettings& settings, const SandboxRequest& request);

} // namespace zelto::sandbox
