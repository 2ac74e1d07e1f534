#include <Platform/Operations/BlockOperation.h>

#include <utility>

namespace zelto {

BlockOperation::BlockOperation(std::move_only_function<void()> block) : block_(std::move(block)) {}

void BlockOperation::main() {
    if (auto block = std::exchange(block_, nullptr)) {
        block();
    }
}

void BlockOperation::endBeforeStart() {
    block_ = nullptr;
}

} // namespace zelto
