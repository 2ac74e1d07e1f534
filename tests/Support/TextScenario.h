#pragma once

#include <ZeltoIntegrations/Export/ServiceExporter.h>

#include <string>
#include <vector>

namespace zelto {

// A scenario of a service that makes one thing of the message's text or link, and takes no files.
template <class ServiceExport, class ServiceServer> struct TextScenario {
    using Export = ServiceExport;
    using Server = ServiceServer;
    static constexpr int refusedFormatUnits = 0;
    static constexpr auto noTargetError = IntegrationExportError::createTaskError;

    static void prepare(Export&) {}

    static std::vector<std::string> madeWithoutTarget() { return {}; }
};

} // namespace zelto
