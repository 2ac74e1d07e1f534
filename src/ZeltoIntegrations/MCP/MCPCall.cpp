#include <ZeltoIntegrations/MCP/MCPCall.h>

#include <ZeltoIntegrations/MCP/MCPRunningCallInternal.h>

#include <utility>

namespace zelto {

MCPCall::MCPCall(std::shared_ptr<MCPRunningCall> call) : call_(std::move(call)) {}

void MCPCall::cancel() const {
    if (call_) {
        call_->end(MCPRunningCall::cancelled());
    }
}

} // namespace zelto
