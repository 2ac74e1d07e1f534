#pragma once

#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto::cli {

// The service of that name: a case's or a product's name without regard to case and blanks, or a word that
// people use for it ("teams", "drive").
std::optional<ServiceType> serviceNamed(std::string_view name);

// The name that the program shows for a service, and takes.
std::string displayName(ServiceType type);

} // namespace zelto::cli
