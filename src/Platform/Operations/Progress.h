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
    // A child of the parent, if there is one. If that is the calling thread's current progress, the first
    // child made takes the units passed to becomeCurrent; any other child takes none and is only cancelled
    // with its parent.
    explicit Progress(const std::shared_ptr<Progress>& parent = current());
    // A child of the current progress, if there is one.
    explicit Progress(std::int64_t totalUnitCount);
    virtual ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    std::int64_t totalUnitCount() const;
    void setTotalUnitCount(std::int64_t count);

    std::int64_t completedUnitCount() const;
    // A subclass that needs to know of each change overrides this and calls the base. Not called for units
    // that a child fills.
    virtual void setCompletedUnitCount(std::int64_t count);

    // Reads the count, lets the function change it and sets it once, or not at all when the function throws.
    // Not atomic: one of two simultaneous modifications may be lost.
    template <std::invocable<std::int64_t&> F> void modifyCompletedUnitCount(F&& function) {
        auto count = completedUnitCount();
        std::forward<F>(function)(count);
        setCompletedUnitCount(count);
    }

    // Completed units divided by the total, children included in proportion. Zero while isIndeterminate; one
    // if the total is zero and something is completed; above one if more was completed than announced.
    double fractionCompleted() const;
    // Whether a count is negative, or both are zero.
    bool isIndeterminate() const;
    // Whether everything is completed, and the progress is not indeterminate.
    bool isFinished() const;

    // Marks this progress and all its descendants as cancelled, and calls their cancellation handlers on the
    // calling thread, once.
    void cancel();
    bool isCancelled() const;
    // Called when the progress is cancelled; at once if it is cancelled already. Exceptions from it are
    // contained.
    void setCancellationHandler(std::move_only_function<void()> handler);

    // The child fills that many of this progress's units. A child that is cancelled already does not cancel
    // its parent; a child of a cancelled parent is cancelled. Without effect for a child that has a parent,
    // or for itself.
    void addChild(const std::shared_ptr<Progress>& child, std::int64_t pendingUnitCount);

    // Between the two calls, a progress made on this thread becomes a child of this one and takes that many
    // units. Calls can be nested. If none was made, resigning completes the units.
    void becomeCurrent(std::int64_t pendingUnitCount);
    void resignCurrent();
    // The calling thread's current progress; null if there is none.
    static std::shared_ptr<Progress> current();

  private:
    struct Node;
    std::shared_ptr<Node> node_;
};

} // namespace zelto
