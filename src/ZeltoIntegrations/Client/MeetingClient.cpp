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

std::optional<ServiceRefusal> MeetingClient::lastRefusal() const {
    return lastRefusal_->value();
}

JSONEncoder MeetingClient::jsonEncoder() {
    return {.dateStrategy = DateStrategy::iso8601};
}

void MeetingClient::performChange(ServiceRequest request, ChangeCompletion completion) {
    beginOperation();
    performMapped<Empty>(
        *this, std::move(request), [](Empty) { return Result<void, MeetingCreatorError>(); },
        meetingCreatorError, std::move(completion));
}

void MeetingClient::beginOperation() {
    lastRefusal_->exchange(std::nullopt);
}

ServiceClient::RefusalObserver MeetingClient::refusalNote() const {
    return [last = lastRefusal_](const ServiceRefusal& refusal) { last->exchange(refusal); };
}

void MeetingClient::logUnencodable(const EncodingError& error) {
    Logger::shared().error("Failed to encode body with error: " + error.message(), "withBody");
}

} // namespace zelto
