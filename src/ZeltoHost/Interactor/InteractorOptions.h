#pragma once

#include <Platform/URL.h>
#include <ZeltoHost/Content/ContentNotes.h>

#include <memory>
#include <optional>
#include <string>

namespace zelto {

// Facts that a mail or a note does not contain.
struct InteractorOptions {
    // The user's own address, or only their domain: parties of that domain and of its subdomains are
    // internal. If absent, the address that a mail was delivered to is used; without that, every party counts
    // as external.
    std::optional<std::string> userAddress;

    // The address of the message on the web: the only source of a web link to a mail.
    std::optional<URL> webLink;

    // The time zone of written dates, as for DateFormatter; if absent, the system's.
    std::optional<std::string> timeZone;

    // Gets what an export does not show as the message has it; may be absent.
    std::shared_ptr<ContentNotes> notes;
};

} // namespace zelto
