#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>

namespace zelto {

// How far a piece of work has come, in units of the caller's choice, and the way to cancel it. Always made
// with std::make_shared. A progress can have children, each of which stands for some units of its parent and
// fills them as it advances.
//
// All functions may be called on any thread; no lock is held while a handler or a virtual function runs.
class Progress : public std::enable_shared_from_this<Progress> {
  public:
    // A child of the parent, if one is given. If that is the calling thread's current progress, the first
    // child made takes the units that were given to becomeCurrent; any other child stands for none and is
    // only cancelled with its parent.
    explicit Progress(const std::shared_ptr<Progress>& parent = current());
    // A child of the current progress, if there is one.
    explicit Progress(std::int64_t totalUnitCount);
    virtual ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    std::int64_t totalUnitCount() const;
    void setTotalUnitCount(std::int64_t count);

    std::int64_t completedUnitCount() const;
    // A subclass that wants to know of each change overrides this and calls the base. Not called for the
    // units that a child fills.
    virtual void setCompletedUnitCount(std::int64_t count);

    // Reads the count, lets the function change it and sets it: once, and not at all when the function
    // throws. Two modifications at a time are not ordered by this; one of them may be lost.
    template <std::invocable<std::int64_t&> F> void modifyCompletedUnitCount(F&& function) {
        auto count = completedUnitCount();
        std::forward<F>(function)(count);
        setCompletedUnitCount(count);
    }

    // Completed units over all, children included in proportion. Zero while isIndeterminate; one when there
    // is something completed of a total of zero; above one when more was completed than was announced.
    double fractionCompleted() const;
    // A count is negative, or both are zero.
    bool isIndeterminate() const;
    // Completed to the total or beyond, and not indeterminate.
    bool isFinished() const;

    // Marks this progress and all below it, and calls their cancellation handlers on the calling thread,
    // once.
    void cancel();
    bool isCancelled() const;
    // Called when the progress is cancelled; at once if it is already. What it throws is contained.
    void setCancellationHandler(std::move_only_function<void()> handler);

    // The child fills so many of this progress's units. A child that is cancelled already cancels nothing
    // above; a child of a cancelled parent is cancelled. Without effect for a child that has a parent, or for
    // itself.
    void addChild(const std::shared_ptr<Progress>& child, std::int64_t pendingUnitCount);

    // Between the two calls, on this thread, a progress that is made becomes a child of this one and stands
    // for that many units. Pairs nest. If none was made, resigning completes the units.
    void becomeCurrent(std::int64_t pendingUnitCount);
    void resignCurrent();
    // Nothing if there is none on this thread.
    static std::shared_ptr<Progress> current();

  private:
    struct Node;
    std::shared_ptr<Node> node_;
};

} // namespace zelto
