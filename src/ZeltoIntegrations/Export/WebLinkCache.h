#pragma once

#include <ZeltoIntegrations/Export/CachedValue.h>
#include <ZeltoIntegrations/Export/ContentText.h>

#include <cstdint>

namespace zelto {

// The web-link settings of the last export: a member of each exporter whose texts carry web links. Its
// configuration has the fields `webLinkVisibility` and `teamId`.
class WebLinkCache {
  public:
    explicit WebLinkCache(ServiceExporter& exporter)
        : visibility_(exporter, "lastWebLinkVisibility"), teamId_(exporter, "lastTeamId") {}

    // As they were stored; without any, only the user may open a link.
    WebLinkSettings settings() const {
        return {.visibility = visibility_().value_or(IntegrationWebLinkVisibility::onlyMe),
                .teamId = teamId_()};
    }

    template <class Configuration> void offerTo(Configuration& configuration) const {
        const auto stored = settings();
        configuration.webLinkVisibility = stored.visibility;
        configuration.teamId = stored.teamId;
    }

    template <class Configuration> void storeFrom(const Configuration& configuration) {
        visibility_.set(configuration.webLinkVisibility);
        teamId_.set(configuration.teamId);
    }

  private:
    CachedValue<IntegrationWebLinkVisibility> visibility_;
    CachedValue<std::uint64_t> teamId_;
};

// What the user chose in a configuration with these fields.
template <class Configuration> WebLinkSettings webLinkSettingsOf(const Configuration& configuration) {
    return {.visibility = configuration.webLinkVisibility, .teamId = configuration.teamId};
}

} // namespace zelto
