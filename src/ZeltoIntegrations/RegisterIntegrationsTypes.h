#pragma once

namespace zelto {

// Gives AnyCodable the names of six types of services' data. The host calls it once, before it decodes any
// account. What exporters cache in an account needs no name: it is plain JSON.
void RegisterIntegrationsTypes();

} // namespace zelto
