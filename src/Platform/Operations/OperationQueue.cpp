#include <Platform/Operations/OperationQueue.h>

#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationCoreInternal.h>

#include <ranges>
#include <utility>

namespace zelto {

OperationQueue::OperationQueue(std::string name) : core_(std::make_shared<OperationCore>(std::move(name))) {}

OperationQueue::~OperationQueue() {
    core_->release();
}

std::string OperationQueue::name() const {
    return core_->name();
}

void OperationQueue::setName(std::string name) {
    core_->setName(std::move(name));
}

int OperationQueue::maxConcurrentOperationCount() const {
    return core_->limit();
}

void OperationQueue::setMaxConcurrentOperationCount(int count) {
    core_->setLimit(count);
}

bool OperationQueue::isSuspended() const {
    return core_->isSuspended();
}

void OperationQueue::setSuspended(bool suspended) {
    core_->setSuspended(suspended);
}

bool OperationQueue::addOperation(std::shared_ptr<Operation> operation) {
    return core_->add({&operation, 1});
}

std::shared_ptr<Operation> OperationQueue::addOperation(std::move_only_function<void()> block) {
    std::shared_ptr<Operation> operation = std::make_shared<BlockOperation>(std::move(block));
    core_->add({&operation, 1});
    return operation;
}

void OperationQueue::addOperations(const std::vector<std::shared_ptr<Operation>>& operations,
                                   bool waitUntilFinished) {
    core_->add(operations);
    if (waitUntilFinished) {
        for (const auto& each : operations) {
            each->waitUntilFinished();
        }
    }
}

void OperationQueue::cancelAllOperations() {
    for (const auto& each : core_->operations() | std::views::reverse) {
        each->cancel();
    }
}

std::vector<std::shared_ptr<Operation>> OperationQueue::operations() const {
    return core_->operations();
}

std::size_t OperationQueue::operationCount() const {
    return core_->operations().size();
}

void OperationQueue::waitUntilAllOperationsAreFinished() {
    core_->waitUntilEmpty();
}

} // namespace zelto
