#pragma once

#include "accounts/AccountWork.h"
#include "meeting/MeetingFailures.h"

#include <chrono>
#include <functional>
#include <string>

namespace zelto::cli {

// One operation on a meeting: what a command asks a service for.
struct MeetingOperation {
    MeetingAction action = MeetingAction::create;
    std::string meeting;              // its identifier, of one that there was before
    std::optional<std::string> title; // of the meeting that is written
    // Of a meeting that is not made anew, the completion gets its identifier alone.
    std::function<void(MeetingCreator&, MeetingCreator::CreationCompletion)> begin;
};

// All that a command about a meeting works with.
class MeetingWork {
  public:
    static Outcome<MeetingWork> open(const Invocation& invocation);

    ServiceType serviceType() const { return account_.account.serviceType(); }

    std::string service() const { return account_.service(); }

    std::string identifier() const { return account_.account.identifier(); }

    bool isDryRun() const { return isDryRun_; }

    // Waits for the end of the operation. The first Ctrl-C cancels it, and so does a standstill.
    Outcome<ConferenceDetails> run(const MeetingOperation& operation);

  private:
    MeetingWork(AccountWork account, std::chrono::milliseconds timeout, bool isDryRun)
        : account_(std::move(account)), timeout_(timeout), isDryRun_(isDryRun) {}

    AccountWork account_;
    std::chrono::milliseconds timeout_;
    bool isDryRun_;
};

} // namespace zelto::cli
