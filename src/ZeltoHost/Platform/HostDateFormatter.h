#pragma once

#include <ZeltoIntegrations/Content/IntegrationsDateFormatter.h>

namespace zelto {

// Dates in the locale of the environment (LC_ALL, LC_TIME, LANG) or in a given one, in the system's time
// zone. Empty for a date that no calendar supports. Any thread.
class HostDateFormatter final : public IntegrationsDateFormatter {
  public:
    std::string string(Date date, const std::string& format) override;
    std::string string(Date date, const std::string& format, const std::string& localeName) override;
};

} // namespace zelto
