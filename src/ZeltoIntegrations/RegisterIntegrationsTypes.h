#pragma once

namespace zelto {

// Tells AnyCodable of the types that accounts cache. The host calls it once, before it decodes any account.
void RegisterIntegrationsTypes();

} // namespace zelto
