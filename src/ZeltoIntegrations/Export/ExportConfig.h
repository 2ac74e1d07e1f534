#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <concepts>
#include <string>
#include <vector>

namespace zelto {

// What each service's *ExportConfiguration record offers. `Exporter` is the service's exporter. `diff` is
// called on the configuration that the exporter itself would have offered and names the fields that the user
// changed. `storeLastExportInfo` writes what the next export offers as default.
template <class C>
concept ExportConfig = requires(const C& configuration, typename C::Exporter& exporter) {
    { configuration.exportType() } -> std::same_as<IntegrationExportContentType>;
    { configuration.diff(configuration, true) } -> std::same_as<std::vector<std::string>>;
    configuration.storeLastExportInfo(exporter);
};

} // namespace zelto
