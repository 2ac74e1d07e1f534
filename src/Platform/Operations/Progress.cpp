#include <Platform/Operations/Progress.h>

#include <Platform/Operations/ContainedException.h>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace zelto {

// Parents hold the nodes of their children, not the children: a child that is released half done still counts
// as half done, without being kept alive.
struct Progress::Node {
    struct Child {
        std::shared_ptr<Node> node;
        std::int64_t units;
    };

    bool isIndeterminate() const { return total < 0 || completed < 0 || (total == 0 && completed == 0); }

    bool isFinished() const { return !isIndeterminate() && completed >= total; }

    double fraction() const;
    void set(std::int64_t Node::*count, std::int64_t value);
    void notifyParents() const;
    bool fill(const Node& child);
    void cancel();
    static void adopt(const std::shared_ptr<Node>& parent, const std::shared_ptr<Node>& child,
                      std::int64_t units);

    mutable std::mutex mutex;
    std::int64_t total = 0;
    std::int64_t completed = 0;
    std::vector<Child> children;
    std::weak_ptr<Node> parent;
    bool isCancelled = false;
    std::move_only_function<void()> cancellationHandler;
};

namespace {

struct Current {
    std::shared_ptr<Progress> progress;
    std::int64_t units;
    bool isTaken = false;
};

thread_local std::vector<Current> currents;

// Guards the relations of parents and children, so that two simultaneous additions cannot form a circle.
std::mutex familyMutex;

} // namespace

double Progress::Node::fraction() const {
    std::vector<Child> parts;
    double done = 0;
    double all = 0;
    {
        const std::lock_guard lock(mutex);
        if (isIndeterminate() && children.empty()) {
            return 0;
        }
        parts = children;
        done = static_cast<double>(completed);
        all = static_cast<double>(total);
    }
    for (const auto& each : parts) {
        done += static_cast<double>(each.units) * each.node->fraction();
    }
    if (all <= 0) {
        return all == 0 && done > 0 ? 1 : 0;
    }
    return std::max(done, 0.0) / all;
}

void Progress::Node::set(std::int64_t Node::*count, std::int64_t value) {
    bool hasFinished = false;
    {
        const std::lock_guard lock(mutex);
        this->*count = value;
        hasFinished = isFinished();
    }
    if (hasFinished) {
        notifyParents();
    }
}

void Progress::Node::notifyParents() const {
    std::shared_ptr<Node> below;
    for (const Node* child = this; child; child = below.get()) {
        std::unique_lock lock(child->mutex);
        auto above = child->parent.lock();
        lock.unlock();
        const bool goesOn = above && above->fill(*child);
        below = goesOn ? std::move(above) : nullptr;
    }
}

// Turns a finished child into completed units. True if that finished this node too.
bool Progress::Node::fill(const Node& child) {
    Child finished;
    const std::lock_guard lock(mutex);
    const auto found = std::ranges::find(children, &child, [](const Child& each) { return each.node.get(); });
    if (found == children.end()) {
        return false;
    }
    finished = std::move(*found);
    children.erase(found);
    completed += finished.units;
    return isFinished();
}

void Progress::Node::cancel() {
    std::vector<std::shared_ptr<Node>> remaining;
    auto cancelOne = [&remaining](Node& node) {
        std::move_only_function<void()> handler;
        {
            const std::lock_guard lock(node.mutex);
            if (std::exchange(node.isCancelled, true)) {
                return;
            }
            handler = std::exchange(node.cancellationHandler, nullptr);
            std::ranges::transform(node.children, std::back_inserter(remaining), &Child::node);
        }
        if (handler) {
            containingExceptions("A cancellation handler", handler);
        }
    };
    cancelOne(*this);
    while (!remaining.empty()) {
        const auto next = std::move(remaining.back());
        remaining.pop_back();
        cancelOne(*next);
    }
}

void Progress::Node::adopt(const std::shared_ptr<Node>& parent, const std::shared_ptr<Node>& child,
                           std::int64_t units) {
    bool isCancelled = false;
    bool hasFinished = false;
    std::vector<std::shared_ptr<Node>>
        ancestors; // destroyed after the lock is released, since this may be the last reference
    {
        const std::lock_guard family(familyMutex);
        for (auto above = parent; above; above = above->parent.lock()) {
            if (above == child) {
                return;
            }
            ancestors.push_back(above);
        }
        {
            const std::scoped_lock lock(parent->mutex, child->mutex);
            if (!child->parent.expired()) {
                return;
            }
            child->parent = parent;
            parent->children.push_back({child, units});
            isCancelled = parent->isCancelled;
            hasFinished = child->isFinished();
        }
    }
    if (hasFinished) {
        child->notifyParents();
    }
    if (isCancelled) {
        child->cancel();
    }
}

Progress::Progress(const std::shared_ptr<Progress>& parent) : node_(std::make_shared<Node>()) {
    if (!parent) {
        return;
    }
    const bool takesUnits = !currents.empty() && currents.back().progress == parent &&
                            !std::exchange(currents.back().isTaken, true);
    Node::adopt(parent->node_, node_, takesUnits ? currents.back().units : 0);
}

Progress::Progress(std::int64_t totalUnitCount) : Progress(current()) {
    node_->set(&Node::total, totalUnitCount);
}

Progress::~Progress() = default;

std::int64_t Progress::totalUnitCount() const {
    const std::lock_guard lock(node_->mutex);
    return node_->total;
}

void Progress::setTotalUnitCount(std::int64_t count) {
    node_->set(&Node::total, count);
}

std::int64_t Progress::completedUnitCount() const {
    const std::lock_guard lock(node_->mutex);
    return node_->completed;
}

void Progress::setCompletedUnitCount(std::int64_t count) {
    node_->set(&Node::completed, count);
}

double Progress::fractionCompleted() const {
    return node_->fraction();
}

bool Progress::isIndeterminate() const {
    const std::lock_guard lock(node_->mutex);
    return node_->isIndeterminate();
}

bool Progress::isFinished() const {
    const std::lock_guard lock(node_->mutex);
    return node_->isFinished();
}

void Progress::cancel() {
    // A handler may release this progress.
    const auto node = node_;
    node->cancel();
}

bool Progress::isCancelled() const {
    const std::lock_guard lock(node_->mutex);
    return node_->isCancelled;
}

void Progress::setCancellationHandler(std::move_only_function<void()> handler) {
    {
        const std::lock_guard lock(node_->mutex);
        if (!node_->isCancelled) {
            node_->cancellationHandler.swap(handler);
            return;
        }
    }
    if (handler) {
        containingExceptions("A cancellation handler", handler);
    }
}

void Progress::addChild(const std::shared_ptr<Progress>& child, std::int64_t pendingUnitCount) {
    Node::adopt(node_, child->node_, pendingUnitCount);
}

void Progress::becomeCurrent(std::int64_t pendingUnitCount) {
    currents.push_back({shared_from_this(), pendingUnitCount});
}

void Progress::resignCurrent() {
    const auto found = std::ranges::find(currents.rbegin(), currents.rend(), this,
                                         [](const Current& each) { return each.progress.get(); });
    if (found == currents.rend()) {
        return;
    }
    const auto resigned = std::move(*found);
    currents.erase(std::next(found).base());
    if (!resigned.isTaken) {
        setCompletedUnitCount(completedUnitCount() + resigned.units);
    }
}

std::shared_ptr<Progress> Progress::current() {
    return currents.empty() ? nullptr : currents.back().progress;
}

} // namespace zelto
