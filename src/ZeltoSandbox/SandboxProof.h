#pragma once

#include <string>
#include <string_view>

namespace zelto {

// What a sandbox responds to a challenge at "/control/identity". Whoever is about to send something to an
// address that should be a sandbox's makes up a challenge and compares: another program that happens to
// listen there does not know this.
std::string sandboxProof(std::string_view challenge);

} // namespace zelto
