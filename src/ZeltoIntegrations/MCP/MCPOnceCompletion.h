#pragma once

#include <ZeltoIntegrations/MCP/MCPError.h>

#include <TrovenhalCommon/OnceGate.h>

#include <utility>

namespace zelto {

// A completion that several threads may call; the first call counts, later ones are ignored.
template <class T> class MCPOnceCompletion {
  public:
    explicit MCPOnceCompletion(MCPCompletion<T> completion) : completion_(std::move(completion)) {}

    void operator()(MCPResult<T> result) {
        gate_.once([&] { completion_(std::move(result)); });
    }

  private:
    OnceGate gate_;
    MCPCompletion<T> completion_;
};

} // namespace zelto
