#pragma once

#include "export/ServiceAdapter.h"

#include <ZeltoHost/Platform/HostPlatformInteractor.h>
#include <ZeltoIntegrations/ICloud/ICloudExporter.h>

namespace zelto::cli {

// The drive's folder is that of the account, so there are no targets.
struct ICloudAdapter : WebAdapter<ICloudExporter> {
    static std::shared_ptr<ICloudClient> hostClient(HostPlatformInteractor& platform,
                                                    const ICloudExporter& exporter) {
        return platform.iCloudClient(exporter.accountConfiguration());
    }
};

} // namespace zelto::cli
