#pragma once

#include <Platform/URL.h>

#include <optional>
#include <string>

namespace zelto {

// What a mail or a note cannot say about itself.
struct InteractorOptions {
    // The user's own address, or their domain alone: parties of that domain and of its subdomains are
    // internal. Without it the address that a mail was delivered to stands in; without that every party
    // counts as external.
    std::optional<std::string> userAddress;

    // The address of the message on the web: the only source of a web link to a mail.
    std::optional<URL> webLink;

    // The zone that dates are written in, as DateFormatter takes it; the system's without it.
    std::optional<std::string> timeZone;
};

} // namespace zelto
