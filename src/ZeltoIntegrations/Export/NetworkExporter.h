#pragma once

#include <ZeltoIntegrations/Export/ExportReport.h>
#include <ZeltoIntegrations/Export/ServiceExporter.h>

#include <Platform/JSON/JSONDecoder.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// What the exporters share that reach their service by requests.
//
// An export is a list of steps that run one after the other. Each hands on what it made as its result, for
// the later steps that were given it; a failure does not stop the others, and the first one in the order of
// the steps is what the export ends with. Cancelling the progress ends the request under way and the export
// with it, without waiting for what the host was asked for; no step begins and no request is made after that.
// It ends the exports and loadings too that wait behind it then, and so does a step that lets go of its
// callback uncalled: an export with `canceled`, its own included.
class NetworkExporter : public ServiceExporter {
  public:
    using ServiceExporter::ServiceExporter;

    // Of the last export that was begun, also while it runs. Any thread.
    ExportReport exportReport() const;

  protected:
    template <class T> using StepCompletion = Completion<T, IntegrationExportError>;

    // What a step calls when it has done its work: false if the export is to stop here.
    using UpdateProgress = std::function<bool()>;

    // Puts the steps of one export together.
    class Steps {
      public:
        // `finish` gets the export's result.
        Steps(std::shared_ptr<NetworkExporter> exporter, std::size_t unitCount, ResultMediator<void> finish);

        // A member function of the exporter, called with these arguments, an UpdateProgress and a
        // StepCompletion<R>.
        template <class R, class Exporter, class... Parameters, class... Arguments>
        Step<R> add(void (Exporter::*step)(Parameters...), Arguments... arguments) {
            auto operation = run_->exporter->createAsyncTask<ExporterResult<R>>(
                [run = run_, step, ... arguments = std::move(arguments)](StepCompletion<R> done) {
                    run->exporter->isRequesting_ = false;
                    run->exporter->setProgress(run->progress);
                    if (run->stopIfCancelled()) {
                        return done(failure(IntegrationExportError::canceled));
                    }
                    (static_cast<Exporter&>(*run->exporter).*step)(
                        arguments..., [run] { return run->update(); },
                        [run, done = std::move(done)](ExporterResult<R> result) mutable {
                            run->exporter->isRequesting_ = false;
                            // A request that was cut off is no failure of its own.
                            if (!result && run->stopIfCancelled()) {
                                result = failure(IntegrationExportError::canceled);
                            }
                            done(std::move(result));
                        });
                });
            operations_.push_back(operation);
            outcomes_.push_back([operation] { return outcomeOf(resultOf(operation)); });
            return operation;
        }

        // Adds the step that finishes the export, and starts.
        std::shared_ptr<ExportProgress> execute();

      private:
        struct Run : std::enable_shared_from_this<Run> {
            Run(std::shared_ptr<NetworkExporter> theExporter, std::shared_ptr<ExportProgress> theProgress,
                ResultMediator<void> theFinish)
                : exporter(std::move(theExporter)), progress(std::move(theProgress)),
                  finish(std::move(theFinish)) {}

            using Operations = std::vector<std::weak_ptr<Operation>>;

            void cancel();

            bool update();
            bool stopIfCancelled();

            std::shared_ptr<NetworkExporter> exporter;
            std::shared_ptr<ExportProgress> progress;
            ResultMediator<void> finish;

          private:
            Operations cancelledOperations();

            std::atomic<bool> hasStopped_ = false;
            std::once_flag isCancelling_;
            Operations cancelledOperations_;
        };

        std::shared_ptr<Run> run_;
        std::vector<std::shared_ptr<Operation>> operations_;
        std::vector<std::function<ExporterResult<void>()>> outcomes_;
    };

    // Ends a step: a success counts, and is `canceled` if the export is to stop.
    template <class T>
    static StepCompletion<T> counted(UpdateProgress updateProgress, StepCompletion<T> done) {
        return [updateProgress = std::move(updateProgress),
                done = std::move(done)](ExporterResult<T> result) mutable {
            if (result && !updateProgress()) {
                result = failure(IntegrationExportError::canceled);
            }
            done(std::move(result));
        };
    }

    // The message as a PDF file of that title, which stays there. Fails with `convertError`.
    void makePdf(const std::string& title, StepCompletion<std::filesystem::path> done);

    // An attachment as a local file. Fails with `missing` if the host has none.
    void fetchFile(std::int64_t attachmentPk, IntegrationExportError missing,
                   StepCompletion<std::filesystem::path> done);

    // A client with the account's credentials, which cancelling reaches from now on; nothing for an account
    // without credentials. A step of an export that was cancelled gets none either: what it fails with does
    // not matter.
    template <class Client, class Authoriser> std::shared_ptr<Client> createClient() {
        const auto credentials = accountConfiguration().credentials;
        if (!credentials || isCancelled()) {
            return nullptr;
        }
        auto client = std::make_shared<Client>(std::make_shared<Authoriser>(*credentials), JSONDecoder());
        updateActiveClient(client);
        isRequesting_ = true;
        // The key chain was asked meanwhile, which takes its time. Cancelling reaches the client from now on.
        return isCancelled() ? nullptr : client;
    }

    // Runs the loading of data as a step of its own, behind those that are there. One that is cancelled
    // before it begins ends as a request does: with `connectionError`.
    template <class T>
    void executeLoading(std::move_only_function<void(Completion<T, IntegrationLoadError>)> load,
                        Completion<T, IntegrationLoadError> completion) {
        const auto step = createAsyncTask<Result<T, IntegrationLoadError>>(
            [self = std::static_pointer_cast<NetworkExporter>(shared_from_this()),
             load = std::move(load)](Completion<T, IntegrationLoadError> done) mutable {
                self->setProgress(nullptr);
                load(std::move(done));
            });
        // It is there while its block runs; held by it, one that never ends would keep itself.
        step->setCompletionBlock([&step = *step, completion = std::move(completion)]() mutable {
            completion(
                step.result().value_or(failure(step.isCancelled() ? IntegrationLoadError::connectionError
                                                                  : IntegrationLoadError::internalError)));
        });
        execute({step});
    }

    // For exportReport().
    void reportMade(std::string kind, std::string name, std::optional<std::string> identifier = std::nullopt);
    void reportRefused(std::string kind, std::string name, ServiceClientError reason);

  private:
    template <class T> static ExporterResult<void> outcomeOf(const ExporterResult<T>& result) {
        return result ? ExporterResult<void>() : failure(result.error());
    }

    // Of the export whose step begins; nothing for loading. One step runs at a time, also one that a
    // cancelled export did not wait for.
    void setProgress(const std::shared_ptr<ExportProgress>& progress);
    bool isCancelled() const;

    std::atomic<bool> isRequesting_ = false; // the step that runs has a client
    mutable std::mutex exportLock_;          // guards what follows
    // Its handler may hold the exporter.
    std::weak_ptr<ExportProgress> progress_;
    ExportReport report_;
};

} // namespace zelto
