#include <Platform/Operations/Operation.h>

#include <Platform/Operations/ContainedException.h>
#include <Platform/Operations/OperationCoreInternal.h>
#include <Platform/Operations/OperationLinksInternal.h>
#include <Platform/Operations/ThreadPool.h>

#include <algorithm>
#include <utility>

namespace zelto {

void Operation::Links::addDependant(std::weak_ptr<Operation> dependant) {
    if (dependants.size() == dependants.capacity()) {
        // An operation that never finishes would otherwise gather all that ever waited for it.
        std::erase_if(dependants, [](const auto& each) { return each.expired(); });
        dependants.reserve(std::max<std::size_t>(1, 2 * dependants.size()));
    }
    dependants.push_back(std::move(dependant));
}

Operation::Rest::Rest() = default;
Operation::Rest::Rest(Rest&& other) noexcept = default;
Operation::Rest::~Rest() = default;

Operation::Operation() = default;

Operation::~Operation() {
    if (isFinished()) {
        return;
    }
    if (links_) {
        for (const auto& each : links_->dependants) {
            if (const auto dependant = each.lock()) {
                if (const auto core = dependant->dependencyEnded(*this, nullptr)) {
                    core->becameReady(*dependant);
                }
            }
        }
    }
    if (core_) {
        core_->remove(*this);
    }
}

void Operation::start() {
    {
        const std::lock_guard lock(mutex_);
        if (stage_ != pending || unfinishedDependencies_ != 0 || core_) {
            return;
        }
        stage_ = executing;
    }
    const auto self = shared_from_this();
    if (perform()) {
        end(conclude());
    }
}

void Operation::cancel() {
    std::shared_ptr<OperationCore> core;
    {
        const std::lock_guard lock(mutex_);
        cancelled_ = true;
        if (stage_ != pending) {
            return;
        }
        stage_ = ending;
        core = core_;
    }
    if (core) {
        core->endCancelled(shared_from_this());
    } else {
        ThreadPool::shared().post([self = shared_from_this()] { self->performEnding(); });
    }
}

bool Operation::isReady() const {
    const std::lock_guard lock(mutex_);
    return stage_ != pending || unfinishedDependencies_ == 0;
}

bool Operation::addDependency(const std::shared_ptr<Operation>& dependency) {
    if (dependency.get() == this) {
        return false;
    }
    {
        const std::lock_guard lock(mutex_);
        if (stage_ != pending) {
            return false;
        }
        auto& own = links();
        const bool isNew =
            own.dependencies
                .try_emplace(dependency.get(), Links::Dependency{dependency, nullptr, own.dependenciesAdded})
                .second;
        if (!isNew) {
            return true;
        }
        ++own.dependenciesAdded;
        ++unfinishedDependencies_;
    }
    {
        const std::lock_guard lock(dependency->mutex_);
        if (dependency->stage_ != finished) {
            dependency->links().addDependant(weak_from_this());
            return true;
        }
    }
    if (const auto core = dependencyEnded(*dependency, dependency)) {
        core->becameReady(*this);
    }
    return true;
}

void Operation::removeDependency(const std::shared_ptr<Operation>& dependency) {
    std::unordered_map<const Operation*, Links::Dependency>::node_type removed;
    std::shared_ptr<OperationCore> core;
    {
        const std::lock_guard lock(mutex_);
        if (links_) {
            removed = links_->dependencies.extract(dependency.get());
        }
        if (!removed) {
            return;
        }
        if (!removed.mapped().finished && --unfinishedDependencies_ == 0 && stage_ == pending) {
            core = core_;
        }
    }
    {
        const std::lock_guard lock(dependency->mutex_);
        if (dependency->links_) {
            std::erase_if(dependency->links_->dependants, [this](const auto& each) {
                return !each.owner_before(weak_from_this()) && !weak_from_this().owner_before(each);
            });
        }
    }
    if (core) {
        core->becameReady(*this);
    }
}

std::vector<std::shared_ptr<Operation>> Operation::dependencies() const {
    std::vector<std::pair<std::uint64_t, std::shared_ptr<Operation>>> found;
    {
        const std::lock_guard lock(mutex_);
        if (links_) {
            for (const auto& [key, each] : links_->dependencies) {
                found.emplace_back(each.order, each.finished ? each.finished : each.operation.lock());
            }
        }
    }
    std::ranges::sort(found, {}, [](const auto& each) { return each.first; });
    std::vector<std::shared_ptr<Operation>> all;
    for (auto& [order, operation] : found) {
        if (operation) {
            all.push_back(std::move(operation));
        }
    }
    return all;
}

void Operation::setCompletionBlock(std::move_only_function<void()> block) {
    const std::lock_guard lock(mutex_);
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
    const auto self = shared_from_this();
    end(conclude());
}

bool Operation::begin() {
    const std::lock_guard lock(mutex_);
    if (stage_ != pending || unfinishedDependencies_ != 0) {
        return false;
    }
    stage_ = executing;
    return true;
}

// Whether the operation ends with main().
bool Operation::perform() {
    const bool returned = containingExceptions("An operation", [this] { main(); });
    return !returned || !isAsynchronous();
}

void Operation::performEnding() {
    containingExceptions("An operation that was cancelled", [this] { endBeforeStart(); });
    end(conclude());
}

Operation::Rest Operation::conclude() {
    Rest rest;
    {
        const std::lock_guard lock(mutex_);
        if (stage_ == finished) {
            return rest;
        }
        stage_ = finished;
        rest.hasFinished = true;
        rest.links = std::move(links_);
        rest.core = std::move(core_);
    }
    stage_.notify_all();
    return rest;
}

void Operation::end(Rest rest) {
    if (!rest.hasFinished) {
        return;
    }
    if (rest.links) {
        const auto self = shared_from_this();
        for (const auto& each : rest.links->dependants) {
            if (const auto dependant = each.lock()) {
                if (const auto core = dependant->dependencyEnded(*this, self)) {
                    core->becameReady(*dependant);
                }
            }
        }
    }
    if (rest.core) {
        rest.core->remove(*this);
    }
    if (rest.links && rest.links->completionBlock) {
        containingExceptions("A completion block", rest.links->completionBlock);
    }
}

// The queue to tell when that made this operation ready.
std::shared_ptr<OperationCore> Operation::dependencyEnded(const Operation& dependency,
                                                          std::shared_ptr<Operation> kept) {
    const std::lock_guard lock(mutex_);
    if (!links_) {
        return nullptr;
    }
    const auto found = links_->dependencies.find(&dependency);
    if (found == links_->dependencies.end() || found->second.finished) {
        return nullptr;
    }
    if (kept) {
        found->second.finished = std::move(kept);
    } else {
        links_->dependencies.erase(found);
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
