#pragma once

#include <ZeltoIntegrations/Client/AccountClient.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Export/StepExporter.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zelto {

// What the exporters share that reach their service by requests: the client of a run, and the report of what
// it did on the service.
class NetworkExporter : public StepExporter {
  public:
    using StepExporter::StepExporter;

    // Of the last request that failed in the last run that had requests, be it an export or the loading of
    // data; no value where none has. Any thread.
    std::optional<ServiceRefusal> lastRefusal() const;

  protected:
    // A request that makes something on the service.
    struct Making {
        std::string kind; // the service's word: "card", "file"
        std::string name;
        // What the step fails with; without one, what the request's error is mapped to.
        std::optional<IntegrationExportError> error;
        std::string_view warning;  // in the log, before the name of the request's error
        std::string_view function; // that logs it
        std::optional<std::uint64_t> fileSize = {};
        // Of its content, for which the service has no room.
        std::size_t leftOutBlocks = 0;
        std::size_t leftOutCharacters = 0;
    };

    // The upload of a file, which fails with `uploadAttachmentError`.
    static Making uploading(const File& file, std::string_view warning, std::string_view function);

    // For a service that never refuses by a response of success.
    struct NeverRefused {
        template <class T> std::optional<std::string> operator()(const T&) const { return std::nullopt; }
    };

    // The completion of such a request: reports how it ended and logs its failure. The step's result and the
    // identifier for the report are made of the value. Some services refuse by a response of success:
    // `refusalOf` gives the words of such a value, and the request counts as failed with `apiCallError`.
    template <class T, class R, class ResultOf, class IdentifierOf, class RefusalOf = NeverRefused>
    static Completion<T, ServiceClientError> reported(StepRun& run, Making making, StepCompletion<R> done,
                                                      ResultOf resultOf, IdentifierOf identifierOf,
                                                      RefusalOf refusalOf = {});

    // The same for a request whose value holds the identifier, is it, or has none.
    template <class T>
    static Completion<T, ServiceClientError> reported(StepRun& run, Making making, std::string T::*identifier,
                                                      StepCompletion<std::string> done) {
        return reported<T, std::string>(
            run, std::move(making), std::move(done),
            [identifier](auto value) { return std::move((*value).*identifier); },
            [identifier](const auto& value) { return std::optional((*value).*identifier); });
    }

    static Completion<std::string, ServiceClientError> reported(StepRun& run, Making making,
                                                                StepCompletion<std::string> done);
    static Completion<void, ServiceClientError> reported(StepRun& run, Making making,
                                                         StepCompletion<void> done);

    // The completion of a request that makes nothing, but has to succeed before this is made: logs its
    // failure, and reports it as one of what was to be made.
    template <class T>
    static Completion<T, ServiceClientError> preparing(StepRun& run, Making making, StepCompletion<T> done) {
        return [&run, making = std::move(making), done = std::move(done)](auto value) mutable {
            if (!value) {
                refuseUnsent(run, making, value.error());
                return done(failure(making.error.value_or(exportError(value.error()))));
            }
            done(*std::move(value));
        };
    }

    // For a step that goes on after some failures: reports and logs the failure of a request that was to make
    // something, by its place in the report, or had to succeed before.
    static void refuse(StepRun& run, std::size_t place, const Making& making, ServiceClientError error);
    static void refuseUnsent(StepRun& run, const Making& making, ServiceClientError error);

    // Reports and logs a part of what a request makes that the service refused in these words, while the
    // other parts were made.
    static void reportRefusal(StepRun& run, const Making& making, std::string_view words);

    // The run's client with the account's credentials. Where there is none, for an account without
    // credentials and a run that was cancelled, the step has ended with `oauthError`, and null is returned.
    // The arguments are those that the client takes beside its authoriser and its decoder.
    template <class Client, class Authoriser, class R, class E, class... Arguments>
    std::shared_ptr<Client> clientOf(StepRun& run, Completion<R, E>& done, const Arguments&... arguments) {
        auto client = madeClientOf<Client, Authoriser>(run, arguments...);
        if (!client) {
            done(failure(E::oauthError));
        }
        return client;
    }

  private:
    template <class Client, class Authoriser, class... Arguments>
    std::shared_ptr<Client> madeClientOf(StepRun& run, const Arguments&... arguments) {
        return run.client<Client>([&]() -> std::shared_ptr<Client> {
            const auto credentials = accountConfiguration().credentials;
            if (!credentials) {
                return nullptr;
            }
            const auto refusals = newRefusals();
            auto client = makeAccountClient<Client, Authoriser>(
                *credentials,
                [weakly = weak_from_this()](const auto& refreshed) {
                    if (const auto exporter = weakly.lock()) {
                        static_cast<NetworkExporter&>(*exporter).takeRefreshedTokens(refreshed);
                    }
                },
                [report = run.sharedReport(), refusals](const ServiceRefusal& refusal) {
                    refusals->note(refusal);
                    report->note(refusal);
                },
                arguments...);
            updateActiveClient(client);
            return client;
        });
    }

    // The last refusal of one run, whose requests may end after the exporter.
    class Refusals {
      public:
        void note(const ServiceRefusal& refusal);
        std::optional<ServiceRefusal> last() const;

      private:
        mutable std::mutex lock_;
        std::optional<ServiceRefusal> last_;
    };

    std::shared_ptr<Refusals> newRefusals();

    static void refuse(StepRun& run, std::size_t place, const Making& making, std::string_view words);

    mutable std::mutex refusalsLock_;
    std::shared_ptr<const Refusals> refusals_;
};

template <class T, class R, class ResultOf, class IdentifierOf, class RefusalOf>
Completion<T, ServiceClientError> NetworkExporter::reported(StepRun& run, Making making,
                                                            StepCompletion<R> done, ResultOf resultOf,
                                                            IdentifierOf identifierOf, RefusalOf refusalOf) {
    const auto place = run.report().begin(making.kind, making.name, making.fileSize, making.leftOutBlocks,
                                          making.leftOutCharacters);
    return [&run, place, making = std::move(making), done = std::move(done), resultOf, identifierOf,
            refusalOf](Result<T, ServiceClientError> value) mutable {
        if (!value) {
            refuse(run, place, making, value.error());
            return done(failure(making.error.value_or(exportError(value.error()))));
        }
        if (const std::optional<std::string> words = refusalOf(value)) {
            refuse(run, place, making, *words);
            return done(failure(making.error.value_or(exportError(ServiceClientError::apiCallError))));
        }
        run.report().made(place, identifierOf(value));
        done(resultOf(std::move(value)));
    };
}

} // namespace zelto
