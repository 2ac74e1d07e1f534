#include "meeting/MeetingWork.h"

#include "accounts/SecretPlaces.h"
#include "accounts/ServiceNames.h"
#include "base/Interruption.h"
#include "base/Waiting.h"
#include "commandline/TimeoutOption.h"
#include "export/StallWatch.h"
#include "meeting/MeetingTable.h"

#include <optional>
#include <stop_token>

namespace zelto::cli {

namespace {

using Ended = Result<ConferenceDetails, MeetingCreatorError>;

} // namespace

Outcome<MeetingWork> MeetingWork::open(const Invocation& invocation) {
    const auto named = invocation.value("ID").value();
    if (const auto type = serviceNamed(named)) {
        if (const auto checked = checkMeetings(*type); !checked) {
            return failure(checked.error());
        }
    }
    const auto timeout = timeoutOf(invocation, "120");
    if (!timeout) {
        return failure(timeout.error());
    }
    const bool isDryRun = invocation.has("--dry-run");
    auto account = AccountWork::open(invocation, named, isDryRun ? Requests::none : Requests::sent);
    if (!account) {
        return failure(account.error());
    }
    if (const auto checked = checkMeetings(account->account.serviceType()); !checked) {
        return failure(checked.error());
    }
    return MeetingWork(*std::move(account), *timeout, isDryRun);
}

Outcome<ConferenceDetails> MeetingWork::run(const MeetingOperation& operation) {
    const auto creator = account_.manager.createMeetingCreator(account_.account);
    if (!creator) {
        return failure(Failure{"oauthError", service() + " has not been signed in to with this account",
                               reconnectCommand(account_.account)});
    }
    const Interruption interruption;
    std::optional<std::stop_callback<std::function<void()>>> cancelling;
    std::optional<StallWatch> stallWatch;
    auto ended = waitFor<Ended>([&](auto done) {
        operation.begin(*creator, std::move(done));
        const auto cancel = [creator] { creator->cancelAllOperations(); };
        cancelling.emplace(interruption.stop(), cancel);
        stallWatch.emplace(
            timeout_, [] { return 0.0; }, cancel);
    });
    if (ended) {
        return *std::move(ended);
    }
    MeetingCircumstances about{.action = operation.action,
                               .service = service(),
                               .account = identifier(),
                               .meeting = operation.meeting,
                               .requestError = creator->lastError(),
                               .refusal = creator->lastRefusal(),
                               .wasInterrupted = interruption.stop().stop_requested(),
                               .stalledFor = {}};
    if (stallWatch->hasStalled()) {
        about.stalledFor = timeout_;
    }
    return failure(explained(meetingFailure(ended.error(), about), account_.workspace, account_.account));
}

} // namespace zelto::cli
