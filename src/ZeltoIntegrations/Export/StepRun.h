#pragma once

#include <ZeltoIntegrations/Client/CancellableServiceClient.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Export/ExportProgress.h>
#include <ZeltoIntegrations/Export/ExportReportLog.h>
#include <ZeltoIntegrations/Export/TaskRunner.h>

#include <Platform/Completion.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace zelto {

// What a run does when a step has failed.
enum class FailureRule {
    goOn, // every step runs; the first failure in their order is the result
    stop, // the steps after it are not called, and end with that failure
};

// The case of an error type that stands for a run that was cancelled.
template <class E> struct CancelledError;

template <> struct CancelledError<IntegrationExportError> {
    static constexpr auto value = IntegrationExportError::canceled;
};

template <> struct CancelledError<IntegrationLoadError> {
    static constexpr auto value = IntegrationLoadError::connectionError;
};

// One run of steps: an export, the loading of data, an import. It has one client, one progress, one report
// and one end. Cancelling it ends its own steps and its requests at once and lets nothing more of it begin;
// other runs on the same queue go on. Any thread.
class StepRun : public std::enable_shared_from_this<StepRun> {
  public:
    // Without a progress the run cannot be cancelled from outside.
    StepRun(std::shared_ptr<ExportProgress> progress, std::shared_ptr<ExportReportLog> report);
    virtual ~StepRun() = default;
    StepRun(const StepRun&) = delete;
    StepRun& operator=(const StepRun&) = delete;

    // The client of this run, made by the function at the first call; null when that gives none, and for a
    // run that was cancelled.
    template <class Client, class Make> std::shared_ptr<Client> client(Make make) {
        if (auto present = presentClient()) {
            return std::static_pointer_cast<Client>(std::move(present));
        }
        const std::shared_ptr<Client> made = isCancelled() ? nullptr : make();
        return std::static_pointer_cast<Client>(adopt(made));
    }

    ExportReportLog& report() const { return *report_; }

    // For what may outlive the run.
    std::shared_ptr<ExportReportLog> sharedReport() const { return report_; }

    bool isCancelled() const;
    void cancel();

    // The gentler form: the requests end and no step begins any more, but each step that has begun ends by
    // itself, with what it has to clean up done.
    void cancelRequests();

    // The operations of the run, in their order. Cancelled, they end from the last one to the first.
    void begin(const std::vector<std::shared_ptr<Operation>>& operations);

  protected:
    // The step with that place in the list has ended, whether or not it has called back.
    bool hasEnded(std::size_t index) const;

    void countStep();
    void countRemainder();

  private:
    std::shared_ptr<CancellableServiceClient> presentClient() const;
    // The client that the run has then: another step may have been quicker. Null once it is cancelled.
    std::shared_ptr<CancellableServiceClient> adopt(std::shared_ptr<CancellableServiceClient> client);

    const std::shared_ptr<ExportProgress> progress_;
    const std::shared_ptr<ExportReportLog> report_;
    mutable std::mutex lock_; // guards what follows
    bool isCancelled_ = false;
    std::int64_t countedSteps_ = 0;
    std::shared_ptr<CancellableServiceClient> client_;
    std::vector<std::weak_ptr<Operation>> operations_;
};

// A run whose steps fail with E.
template <class E> class TypedRun : public StepRun {
  public:
    using Finish = std::function<void(Result<void, E>)>;

    TypedRun(std::shared_ptr<ExportProgress> progress, std::shared_ptr<ExportReportLog> report,
             FailureRule rule, Finish finish)
        : StepRun(std::move(progress), std::move(report)), rule_(rule), finish_(std::move(finish)) {}

    // The error with which a step ends uncalled.
    std::optional<E> reasonToSkip(std::size_t index) const {
        if (isCancelled()) {
            return CancelledError<E>::value;
        }
        return rule_ == FailureRule::stop ? firstFailure(index) : std::nullopt;
    }

    // What becomes of a step's result: a success counts; what ends after cancelling was cancelled.
    template <class R> Result<R, E> ended(std::size_t index, Result<R, E> result) {
        if (result && !isCancelled()) {
            countStep();
        }
        if (isCancelled()) {
            result = failure(CancelledError<E>::value);
        }
        const std::lock_guard guard(outcomesLock_);
        outcomes_.resize(std::max(outcomes_.size(), index + 1));
        outcomes_[index] = result ? Outcome() : Outcome(failure(result.error()));
        return result;
    }

    // The last step, after so many others.
    void conclude(std::size_t stepCount) {
        const auto error = decisiveStep_ ? failureOf(*decisiveStep_) : firstFailure(stepCount);
        if (!error) {
            countRemainder();
        }
        if (isCancelled()) {
            return end(failure(CancelledError<E>::value));
        }
        end(error ? Result<void, E>(failure(*error)) : Result<void, E>());
    }

    // The first call counts.
    void end(Result<void, E> result) {
        Finish finish;
        {
            const std::lock_guard guard(outcomesLock_);
            finish = std::exchange(finish_, nullptr);
        }
        if (finish) {
            report().close();
            finish(std::move(result));
        }
    }

    // The run's result is that of this step alone.
    void endAs(std::size_t index) { decisiveStep_ = index; }

  private:
    using Outcome = Result<void, E>;

    // Of a step that has ended. Without an outcome it was never called back, by a host that drops its
    // callbacks on purpose.
    std::optional<E> failureOf(std::size_t index) const {
        std::unique_lock guard(outcomesLock_);
        if (index < outcomes_.size() && outcomes_[index]) {
            const auto& outcome = *outcomes_[index];
            return outcome ? std::nullopt : std::optional(outcome.error());
        }
        guard.unlock();
        return hasEnded(index) ? std::optional(E::internalError) : std::nullopt;
    }

    std::optional<E> firstFailure(std::size_t stepCount) const {
        for (auto index = leadingSuccesses(); index < stepCount; ++index) {
            if (const auto error = failureOf(index)) {
                return error;
            }
        }
        return std::nullopt;
    }

    // How many steps, from the first one on, have succeeded. It is counted on from the last time: each step
    // asks for a failure of those before it.
    std::size_t leadingSuccesses() const {
        const std::lock_guard guard(outcomesLock_);
        while (leadingSuccesses_ < outcomes_.size() && outcomes_[leadingSuccesses_] &&
               *outcomes_[leadingSuccesses_]) {
            ++leadingSuccesses_;
        }
        return leadingSuccesses_;
    }

    const FailureRule rule_;
    std::optional<std::size_t> decisiveStep_;
    mutable std::mutex outcomesLock_;              // guards what follows
    std::vector<std::optional<Outcome>> outcomes_; // by step
    mutable std::size_t leadingSuccesses_ = 0;
    Finish finish_;
};

// A step that keeps its result for the later ones.
template <class R, class E> using StepOf = std::shared_ptr<ExporterAsyncOperation<Result<R, E>>>;

// Lays out the steps of one run of an exporter or importer, and starts it. On a queue of one they run in
// their order; on another one side by side, and the run ends when all have ended. The owner lives until the
// run has ended and each of its callbacks was called.
template <class Owner, class E> class Steps {
  public:
    using Run = TypedRun<E>;

    Steps(std::shared_ptr<Owner> owner, TaskRunner& tasks, std::shared_ptr<Run> run,
          std::shared_ptr<ExportProgress> progress = nullptr)
        : owner_(std::move(owner)), tasks_(tasks), run_(std::move(run)), progress_(std::move(progress)) {}

    // A member function of the owner, called with the run, these arguments and a Completion<R, E>. The run
    // lives until that was called.
    template <class R, class Class, class... Parameters, class... Arguments>
    StepOf<R, E> add(void (Class::*step)(Parameters...), Arguments... arguments) {
        const auto index = operations_.size();
        auto operation = TaskRunner::createAsyncTask<Result<R, E>>([run = run_, owner = owner_, index, step,
                                                                    ... arguments = std::move(arguments)](
                                                                       Completion<R, E> done) {
            Completion<R, E> end = [run, owner, index, done = std::move(done)](Result<R, E> result) mutable {
                done(run->ended(index, std::move(result)));
            };
            if (const auto error = run->reasonToSkip(index)) {
                return end(failure(*error));
            }
            (static_cast<Class&>(*owner).*step)(*run, arguments..., std::move(end));
        });
        operations_.push_back(operation);
        return operation;
    }

    // The run ends as the step that was added last, whatever the others come to.
    void endAsLast() { run_->endAs(operations_.size() - 1); }

    // Adds the step that ends the run, and starts.
    std::shared_ptr<ExportProgress> execute() {
        const auto last = TaskRunner::createSyncTask(
            [run = run_, stepCount = operations_.size()] { run->conclude(stepCount); });
        last->setCompletionBlock([run = run_] { run->end(failure(CancelledError<E>::value)); });
        if (!tasks_.isSerial()) {
            for (const auto& step : operations_) {
                last->addDependency(step);
            }
        }
        operations_.push_back(last);
        run_->begin(operations_);
        tasks_.execute(operations_);
        if (progress_) {
            progress_->setCancellationHandler([weakly = std::weak_ptr(run_)] {
                if (const auto run = weakly.lock()) {
                    run->cancel();
                }
            });
        }
        return progress_;
    }

  private:
    std::shared_ptr<Owner> owner_;
    TaskRunner& tasks_;
    std::shared_ptr<Run> run_;
    std::shared_ptr<ExportProgress> progress_;
    std::vector<std::shared_ptr<Operation>> operations_;
};

} // namespace zelto
