#pragma once

#include <Platform/Completion.h>
#include <Platform/Date.h>
#include <Platform/Enum.h>
#include <ZeltoIntegrations/Accounts/ServiceType.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Client/ServiceRefusal.h>

#include <optional>
#include <string>

namespace zelto {

// How an operation on a meeting failed. A raw value is the one's complement of the case's place in the list.
enum class MeetingCreatorError : int {
    oauthError = -1, // the service does not accept the account's sign-in
    invalidAccount = -2,
    serviceError = -3,
    // No whole response, one that cannot be read, or too many requests; also of an operation that was
    // cancelled.
    internalError = -4,
    itemNotFound = -5,
    forbidden = -6,
};
ZELTO_ENUM(MeetingCreatorError);

// What every meeting service makes of the end of a request.
MeetingCreatorError meetingCreatorError(ServiceClientError error);

// A meeting on a service.
struct ConferenceDetails {
    std::string id;                      // the service's own
    std::optional<std::string> joinURL;  // for those who join
    std::optional<std::string> callInfo; // for the text of an event
    ServiceType type{};                  // which service has it

    bool operator==(const ConferenceDetails&) const = default;
};

// Makes online meetings on a meeting service for one account. One that also is an
// IntegrationsServiceDataFetcher checks the account while it is connected.
//
// Any thread. Completions are called once, on the thread on which the session delivers; releasing the creator
// stops nothing. Refreshed tokens go to the key chain.
class MeetingCreator {
  public:
    virtual ~MeetingCreator() = default;

    using CreationCompletion = Completion<ConferenceDetails, MeetingCreatorError>;
    using ChangeCompletion = Completion<void, MeetingCreatorError>;

    // Unless both dates are given it is a meeting at no fixed time, as far as the service has such.
    virtual void createMeeting(const std::optional<std::string>& title, std::optional<Date> startDate,
                               std::optional<Date> endDate, CreationCompletion completion) = 0;

    // Writes the meeting anew as `createMeeting` would make it; `id` is that of its ConferenceDetails.
    virtual void updateMeeting(const std::string& id, const std::optional<std::string>& title,
                               std::optional<Date> startDate, std::optional<Date> endDate,
                               ChangeCompletion completion) = 0;

    virtual void deleteMeeting(const std::string& id, ChangeCompletion completion) = 0;

    // Everything under way ends with `internalError`; it is not known then whether the service has acted on
    // it.
    virtual void cancelAllOperations() = 0;

    // Of the last request that failed since an operation was begun last; no value where none has. A
    // MeetingCreatorError does not tell a lost connection, too many requests and a response that cannot be
    // read apart. Of operations under way at once it is not known whose request it was.
    virtual std::optional<ServiceClientError> lastError() const = 0;

    // What else is known of that request; no value where nothing is.
    virtual std::optional<ServiceRefusal> lastRefusal() const = 0;
};

} // namespace zelto
