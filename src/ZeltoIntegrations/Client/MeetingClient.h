#pragma once

#include <ZeltoIntegrations/Client/MappedRequest.h>
#include <ZeltoIntegrations/Client/MeetingCreator.h>
#include <ZeltoIntegrations/Client/ServiceClient.h>

#include <TrovenhalCommon/Protected.h>

#include <Platform/JSON/JSONEncoder.h>

#include <memory>
#include <optional>
#include <utility>

namespace zelto {

// The base of the clients of meeting services. A service adds its records and its requests.
class MeetingClient : public ServiceClient, public MeetingCreator {
  public:
    void cancelAllOperations() final;
    std::optional<ServiceClientError> lastError() const final;
    std::optional<ServiceRefusal> lastRefusal() const final;

  protected:
    // Dates in requests and responses are ISO 8601.
    explicit MeetingClient(std::shared_ptr<ServiceAuthoriser> authoriser);

    static JSONEncoder jsonEncoder();

    // The request with a body of JSON. For a record without JSON, as one with a text that is not UTF-8, it
    // has none, which is logged.
    template <class Record> static ServiceRequest withBody(ServiceRequest request, const Record& record) {
        if (const auto encoded = jsonEncoder().encode(record); !encoded) {
            logUnencodable(encoded.error());
            return request;
        }
        return std::move(request).json(record, jsonEncoder());
    }

    // Begins an operation, whose response is an R, and completes with what `map` makes of that.
    template <class R, class Map>
    void performCreation(ServiceRequest request, Map map, CreationCompletion completion) {
        performNoting<R>(std::move(request), std::move(map), meetingCreatorError, std::move(completion));
    }

    // Begins an operation without a result: the response has the status 204, or is JSON.
    void performChange(ServiceRequest request, ChangeCompletion completion);

    // The same for any operation; `mapError` makes its error of the request's.
    template <class R, class T, class E, class Map, class MapError>
    void performNoting(ServiceRequest request, Map map, MapError mapError, Completion<T, E> completion) {
        lastFailure_->exchange({});
        performMapped<R>(
            *this, std::move(request), std::move(map),
            [last = lastFailure_, mapError](ServiceClientError error) {
                last->modify([&](LastFailure& failure) { failure.error = error; });
                return mapError(error);
            },
            std::move(completion));
    }

    // Notes a refusal; may be called after the client was released.
    RefusalObserver refusalNote() const;

  private:
    // Since the operation that was begun last.
    struct LastFailure {
        std::optional<ServiceClientError> error;
        std::optional<ServiceRefusal> refusal;
    };

    static void logUnencodable(const EncodingError& error);

    const std::shared_ptr<Protected<LastFailure>> lastFailure_ = std::make_shared<Protected<LastFailure>>();
};

} // namespace zelto
