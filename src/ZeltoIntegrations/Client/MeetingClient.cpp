#include <ZeltoIntegrations/Client/MeetingClient.h>

#include <ZeltoCommonLogger/Logger.h>

namespace zelto {

namespace {

JSONDecoder decoder() {
    return {.dateStrategy = DateStrategy::iso8601};
}

} // namespace

MeetingClient::MeetingClient(std::shared_ptr<ServiceAuthoriser> authoriser)
    : ServiceClient(std::move(authoriser), decoder()) {
    setRefusalObserver(refusalNote());
}

void MeetingClient::cancelAllOperations() {
    ServiceClient::cancelAllOperations();
}

std::optional<ServiceClientError> MeetingClient::lastError() const {
    return lastFailure_->value().error;
}

std::optional<ServiceRefusal> MeetingClient::lastRefusal() const {
    return lastFailure_->value().refusal;
}

JSONEncoder MeetingClient::jsonEncoder() {
    return {.dateStrategy = DateStrategy::iso8601};
}

void MeetingClient::performChange(ServiceRequest request, ChangeCompletion completion) {
    performNoting<Empty>(
        std::move(request), [](Empty) { return Result<void, MeetingCreatorError>(); }, meetingCreatorError,
        std::move(completion));
}

RefusalObserver MeetingClient::refusalNote() const {
    return [last = lastFailure_](const ServiceRefusal& refusal) {
        last->modify([&](LastFailure& failure) { failure.refusal = refusal; });
    };
}

void MeetingClient::logUnencodable(const EncodingError& error) {
    Logger::shared().error("Failed to encode body with error: " + error.message(), "withBody");
}

} // namespace zelto
