#pragma once

#include <ZeltoSandbox/HTTP/SandboxResponse.h>

#include <string>
#include <string_view>

namespace zelto::sandbox {

// Foreign text as HTML: one line, shortened, escaped.
std::string shownText(std::string_view text);

// A page of a service for a browser, with this HTML. `formTargets`: where its form may lead, as
// "form-action" of the Content-Security-Policy has it.
SandboxResponse servicePage(std::string_view service, const std::string& content, int status,
                            const std::string& formTargets = "'none'");

} // namespace zelto::sandbox
