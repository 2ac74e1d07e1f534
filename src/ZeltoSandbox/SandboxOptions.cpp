#include <ZeltoSandbox/SandboxOptions.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(SandboxConsent, ask, allow, deny);

} // namespace zelto
