#include <TrovenhalCommon/Operations/LVXAsyncOperation.h>

namespace zelto {

void LVXAsyncOperation::main() {
    asyncMain([self = std::static_pointer_cast<LVXAsyncOperation>(shared_from_this())] { self->finish(); });
}

} // namespace zelto
