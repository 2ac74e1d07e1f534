#pragma once

#include <ZeltoHost/Platform/HostPlatformInteractor.h>

namespace zelto::cli {

// The platform of a dry run: the clients that it gives make nothing, and say that it was made.
class DryPlatform final : public HostPlatformInteractor {
  public:
    using HostPlatformInteractor::HostPlatformInteractor;

    std::shared_ptr<EvernoteClient> evernoteClient(const ServiceAccountConfiguration& configuration) override;
    std::shared_ptr<ICloudClient> iCloudClient(const ServiceAccountConfiguration& configuration) override;
};

} // namespace zelto::cli
