#include <Platform/Operations/Operation.h>

#include <Platform/Operations/ContainedException.h>
#include <Platform/Operations/OperationCoreInternal.h>
#include <Platform/Operations/OperationLinksInternal.h>
#include <Platform/Operations/ThreadPool.h>

#include <algorithm>
#include <mutex>
#include <unordered_set>
#include <utility>

namespace zelto {
namespace {

bool isSame(const std::weak_ptr<Operation>& one, const std::weak_ptr<Operation>& other) {
    return !one.owner_before(other) && !other.owner_before(one);
}

bool isNone(const std::weak_ptr<Operation>& one) {
    return isSame(one, {});
}

} // namespace

void Operation::Links::addDependant(Dependant dependant) {
    if (dependants.size() == dependants.capacity()) {
        // An operation that never finishes would otherwise collect all operations that ever depended on it.
        const auto gone = std::ranges::remove_if(
            dependants, [](const Dependant& each) { return each.operation.expired(); });
        dependants.erase(gone.begin(), gone.end());
        dependants.reserve(2 * dependants.size());
    }
    dependants.push_back(std::move(dependant));
}

Operation::Conclusion::Conclusion() = default;
Operation::Conclusion::Conclusion(Conclusion&& other) noexcept = default;
Operation::Conclusion::~Conclusion() = default;

Operation::Operation() = default;

Operation::~Operation() {
    if (isFinished()) {
        return;
    }
    if (links_) {
        releaseDependants(*links_, nullptr, nullptr, nullptr);
    }
    if (core_) {
        core_->remove(*this);
    }
}

void Operation::start() {
    {
        const std::lock_guard guard(lock_);
        if (stage_ != pending || unfinishedDependencies_ != 0 || core_) {
            return;
        }
        stage_.store(executing, std::memory_order_release);
    }
    const auto self = shared_from_this();
    if (perform()) {
        end(conclude());
    }
}

void Operation::cancel() {
    std::shared_ptr<OperationCore> core;
    {
        const std::lock_guard guard(lock_);
        cancelled_ = true;
        if (stage_ != pending) {
            return;
        }
        stage_.store(ending, std::memory_order_release);
        core = core_;
    }
    if (core) {
        core->endCancelled(shared_from_this());
    } else {
        ThreadPool::shared().post([self = shared_from_this()] { self->performEnding(); });
    }
}

bool Operation::isReady() const {
    const std::lock_guard guard(lock_);
    return stage_ != pending || unfinishedDependencies_ == 0;
}

bool Operation::addDependency(const std::shared_ptr<Operation>& dependency) {
    if (dependency.get() == this) {
        return false;
    }
    std::size_t place = 0;
    {
        const std::lock_guard guard(lock_);
        if (stage_ != pending) {
            return false;
        }
        auto& dependencies = links().dependencies;
        place = dependencies.size();
        dependencies.push_back({dependency, nullptr});
        ++unfinishedDependencies_;
    }
    {
        const std::lock_guard guard(dependency->lock_);
        if (dependency->stage_ != finished) {
            dependency->links().addDependant({weak_from_this(), place});
            return true;
        }
    }
    if (const auto core = dependencyEnded(place, dependency)) {
        core->becameReady(*this);
    }
    return true;
}

void Operation::removeDependency(const std::shared_ptr<Operation>& dependency) {
    std::vector<Links::Dependency> removed;
    std::shared_ptr<OperationCore> core;
    {
        const std::lock_guard guard(lock_);
        if (!links_) {
            return;
        }
        for (auto& each : links_->dependencies) {
            if (isSame(each.operation, dependency)) {
                unfinishedDependencies_ -= !each.finished;
                removed.push_back(std::exchange(each, {}));
            }
        }
        if (!removed.empty() && unfinishedDependencies_ == 0 && stage_ == pending) {
            core = core_;
        }
    }
    if (core) {
        core->becameReady(*this);
    }
}

std::vector<std::shared_ptr<Operation>> Operation::dependencies() const {
    std::vector<std::shared_ptr<Operation>> all;
    {
        const std::lock_guard guard(lock_);
        if (links_) {
            for (const auto& each : links_->dependencies) {
                all.push_back(each.operation.lock());
            }
        }
    }
    std::unordered_set<Operation*> seen;
    std::erase_if(all, [&](const auto& each) { return !each || !seen.insert(each.get()).second; });
    return all;
}

void Operation::setCompletionBlock(std::move_only_function<void()> block) {
    const std::lock_guard guard(lock_);
    if (stage_ != finished && (block || links_)) {
        links().completionBlock.swap(block);
    }
}

void Operation::waitUntilFinished() const {
    if (isFinished()) {
        return;
    }
    const ThreadPool::BlockingScope waiting;
    for (int stage = stage_; stage != finished; stage = stage_) {
        stage_.wait(stage);
    }
}

void Operation::main() {}

void Operation::endBeforeStart() {}

void Operation::finish() {
    if (isExecuting()) {
        const auto self = shared_from_this();
        end(conclude());
    }
}

bool Operation::begin() {
    const std::lock_guard guard(lock_);
    if (stage_ != pending || unfinishedDependencies_ != 0) {
        return false;
    }
    stage_.store(executing, std::memory_order_release);
    return true;
}

// Whether the operation finishes when main() returns.
bool Operation::perform() {
    bool returned = false;
    containingExceptions("An operation", [&] {
        main();
        returned = true;
    });
    return !returned || !isAsynchronous();
}

void Operation::performEnding() {
    containingExceptions("An operation that was cancelled", [this] { endBeforeStart(); });
    end(conclude());
}

Operation::Conclusion Operation::conclude() {
    Conclusion conclusion;
    {
        const std::lock_guard guard(lock_);
        if (stage_ == finished) {
            return conclusion;
        }
        stage_ = finished;
        conclusion.hasFinished = true;
        conclusion.links = std::move(links_);
        conclusion.core = std::move(core_);
    }
    stage_.notify_all();
    return conclusion;
}

void Operation::end(Conclusion conclusion) {
    if (!conclusion.hasFinished) {
        return;
    }
    if (conclusion.links) {
        releaseDependants(*conclusion.links, shared_from_this(), nullptr, nullptr);
    }
    if (conclusion.core) {
        conclusion.core->remove(*this);
    }
    if (conclusion.links && conclusion.links->completionBlock) {
        containingExceptions("A completion block", conclusion.links->completionBlock);
    }
}

// Operations of the current queue that became ready are only collected.
void Operation::releaseDependants(const Links& links, const std::shared_ptr<Operation>& kept,
                                  const OperationCore* current, OperationList* ready) {
    for (const auto& each : links.dependants) {
        auto dependant = each.operation.lock();
        const auto core = dependant ? dependant->dependencyEnded(each.place, kept) : nullptr;
        if (core && core.get() == current) {
            ready->push_back(std::move(dependant));
        } else if (core) {
            core->becameReady(*dependant);
        }
    }
}

// The queue to notify, if this made the operation ready.
std::shared_ptr<OperationCore> Operation::dependencyEnded(std::size_t place,
                                                          std::shared_ptr<Operation> kept) {
    std::weak_ptr<Operation> released;
    const std::lock_guard guard(lock_);
    if (!links_) {
        return nullptr;
    }
    auto& dependency = links_->dependencies[place];
    if (isNone(dependency.operation)) {
        return nullptr;
    }
    if (kept) {
        dependency.finished = std::move(kept);
    } else {
        released.swap(dependency.operation);
    }
    return --unfinishedDependencies_ == 0 && stage_ == pending ? core_ : nullptr;
}

Operation::Links& Operation::links() {
    if (!links_) {
        links_ = std::make_unique<Links>();
    }
    return *links_;
}

} // namespace zelto
