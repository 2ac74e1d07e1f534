#pragma once

#include <Platform/HTTP/URLRequest.h>
#include <Platform/JSON/JSONDecoder.h>
#include <Platform/Operations/Operation.h>
#include <ZeltoIntegrations/Client/CancellableServiceClient.h>
#include <ZeltoIntegrations/Client/FileDownload.h>
#include <ZeltoIntegrations/Client/RequestMaker.h>
#include <ZeltoIntegrations/Client/ServiceAuthoriser.h>
#include <ZeltoIntegrations/Client/ServiceOutcome.h>
#include <ZeltoIntegrations/Client/ServiceRefusal.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace zelto {

// The base of every client of a service: sends requests, signed by the account's authoriser, all at once. A
// token that is known to be stale, or that the service refuses with 401, is refreshed, once for however many
// requests wait, and the request is repeated once, but for no other error. A request that was refused with a
// token that has been replaced since is repeated at once. Each client has its own queue and session; the
// refreshes of one account's clients are kept apart.
//
// Any thread. Completions are called on the thread on which the session delivers, or on which a request was
// refused. Releasing the client stops no request: each completion still comes.
class ServiceClient : public CancellableServiceClient, public std::enable_shared_from_this<ServiceClient> {
  public:
    ServiceClient(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder);
    ~ServiceClient() override;
    ServiceClient(const ServiceClient&) = delete;
    ServiceClient& operator=(const ServiceClient&) = delete;

    // Called with what is known of each request that got no response of success, or one that refuses it all
    // the same, before its completion and on the same thread. To be set before the first request.
    using RefusalObserver = zelto::RefusalObserver;
    void setRefusalObserver(RefusalObserver observer);

    // Sends the request and completes with the response as T: std::string for the body as text, Data for its
    // bytes, Empty, or any type with JSON. POST, GET, DELETE, PUT and PATCH are sent. `targetOperation`,
    // which must not have begun, will not begin before the completion was called. Gives the operation that
    // was queued; cancelling it cancels the request, which then ends with `connectionError`.
    template <class T>
    std::shared_ptr<Operation> perform(URLRequest request, std::shared_ptr<Operation> targetOperation,
                                       ServiceCompletion<T> completion) {
        return performSource<T>(RequestSource::of(std::move(request)), std::move(targetOperation),
                                std::move(completion));
    }

    // The same for a request that is made anew for each try, once the token is the one that will be sent.
    // Without a request the result is `internalError`.
    template <class T>
    std::shared_ptr<Operation> perform(RequestMaker makeRequest, std::shared_ptr<Operation> targetOperation,
                                       ServiceCompletion<T> completion) {
        return performSource<T>({std::move(makeRequest), std::nullopt}, std::move(targetOperation),
                                std::move(completion));
    }

    // The same for a response whose body goes to a file as it comes, whatever its size, and completes with
    // the path at which the file then lies: the goal, or beside it under a numbered name if the goal's is
    // taken. Nothing of it remains after a failure. `onBytes`, which may be null, is called with the number
    // of the file's bytes that have come.
    std::shared_ptr<Operation> download(RequestMaker makeRequest, std::filesystem::path goal,
                                        DownloadProgress onBytes, DownloadCompletion completion);

    // Every request that has not ended ends with `connectionError`, and none of them is repeated. A refresh
    // under way goes on without them, and its token is taken in.
    void cancelAllOperations() override;
    void close() override;

  private:
    class Core;

    template <class T>
    std::shared_ptr<Operation> performSource(RequestSource source, std::shared_ptr<Operation> targetOperation,
                                             ServiceCompletion<T> completion) {
        return enqueueRequest(
            std::move(source), std::move(targetOperation),
            [decoder = jsonDecoder_, onRefusal = refusalObserver(),
             completion = std::move(completion)](ServiceResult<ServiceResponse> result) mutable {
                completion(result ? serviceValue<T>(std::move(*result), decoder, onRefusal)
                                  : failure(result.error()));
            });
    }

    std::shared_ptr<Operation> enqueueRequest(RequestSource source,
                                              std::shared_ptr<Operation> targetOperation,
                                              ServiceCompletion<ServiceResponse> completion);

    // The one that is set when it is called, for requests that may outlive the client.
    RefusalObserver refusalObserver() const;

    const JSONDecoder jsonDecoder_;
    const std::shared_ptr<Core> core_; // also held by the requests that may be repeated
};

} // namespace zelto
