#pragma once

#include <ZeltoIntegrations/Client/CancellableServiceClient.h>
#include <ZeltoIntegrations/ICloud/ICloudClientError.h>

#include <Platform/Completion.h>

#include <filesystem>

namespace zelto {

// The way to the user's iCloud Drive, which the host implements and hands to each export. Called from any
// thread; a completion comes once, on any thread, at once or later. What is cancelled ends with `canceled`.
//
// An export that is cancelled closes its client, so two exports at a time take two clients.
class ICloudClient : public CancellableServiceClient {
  public:
    // Puts a copy of the local file on the drive, under the last component of its path; the file stays where
    // it is until the completion was called. It does not replace a file that is there: which name it gets
    // then, and in which folder of the drive it lies, is the client's choice.
    virtual void uploadFile(std::filesystem::path file, Completion<void, ICloudClientError> completion) = 0;
};

} // namespace zelto
