#include "meeting/MeetingFailures.h"

#include "base/ShellText.h"
#include "commandline/TimeoutOption.h"

#include <Platform/UTF8.h>

#include <utility>

namespace zelto::cli {

namespace {

// Why it failed, without the full stop, and the command to try next.
using Advice = std::pair<std::string, NextCommand>;

std::string infinitive(MeetingAction action) {
    switch (action) {
    case MeetingAction::create:
        return "make";
    case MeetingAction::update:
        return "change";
    case MeetingAction::delete_:
        return "delete";
    }
    std::unreachable();
}

std::string participle(MeetingAction action) {
    switch (action) {
    case MeetingAction::create:
        return "made";
    case MeetingAction::update:
        return "changed";
    case MeetingAction::delete_:
        return "deleted";
    }
    std::unreachable();
}

std::string reconnect(const MeetingCircumstances& about) {
    return "zelto reconnect " + shellWord(about.account);
}

std::string unknownEffect(const MeetingCircumstances& about) {
    return "it is not known whether the meeting was " + participle(about.action);
}

Advice internalAdvice(const MeetingCircumstances& about) {
    if (about.requestError == ServiceClientError::toManyRequests) {
        return {about.service + " had too many requests; try again later", NextCommand::again()};
    }
    if (about.requestError == ServiceClientError::connectionError) {
        const bool wasSent = !about.refusal || !about.refusal->nothingWasSent;
        return {wasSent ? "The connection to " + about.service +
                              " ended before its whole response had come, so " + unknownEffect(about)
                        : about.service + " could not be reached",
                NextCommand::again()};
    }
    if (about.requestError == ServiceClientError::dataParseError) {
        return {"The response of " + about.service + " could not be read, so " + unknownEffect(about),
                NextCommand::againWith("--verbose")};
    }
    return {"The request to " + about.service + " could not be made", NextCommand::againWith("--verbose")};
}

Advice serviceAdvice(const MeetingCircumstances& about) {
    if (about.requestError == ServiceClientError::serviceInternalError) {
        return {about.service + " had an error of its own, so " + unknownEffect(about), NextCommand::again()};
    }
    return {about.service + " did not " + infinitive(about.action) + " the meeting",
            NextCommand::againWith("--verbose")};
}

Advice notFoundAdvice(const MeetingCircumstances& about) {
    if (about.action == MeetingAction::create) {
        return {about.service + " does not know this account as one that makes meetings", reconnect(about)};
    }
    return {about.service + " has no meeting \"" + repairedUTF8(about.meeting) + "\"",
            about.action == MeetingAction::update
                ? NextCommand("zelto meeting create " + shellWord(about.account))
                : NextCommand()};
}

Advice adviceFor(MeetingCreatorError error, const MeetingCircumstances& about) {
    switch (error) {
    case MeetingCreatorError::oauthError:
        return {about.service + " does not accept the account's sign-in any more", reconnect(about)};
    case MeetingCreatorError::invalidAccount:
        return {about.service + " says that the account cannot be used", reconnect(about)};
    case MeetingCreatorError::serviceError:
        return serviceAdvice(about);
    case MeetingCreatorError::internalError:
        return internalAdvice(about);
    case MeetingCreatorError::itemNotFound:
        return notFoundAdvice(about);
    case MeetingCreatorError::forbidden:
        return {"The account may not " + infinitive(about.action) + " meetings on " + about.service,
                reconnect(about)};
    }
    std::unreachable();
}

} // namespace

Failure meetingFailure(MeetingCreatorError error, const MeetingCircumstances& about) {
    if (about.wasInterrupted) {
        return {"canceled", "The request was canceled; " + unknownEffect(about) + ".", NextCommand::again(),
                ExitStatus::interrupted};
    }
    if (about.stalledFor) {
        return {"timedOut",
                "The request was given up, since hardly anything has moved for the time of --timeout; " +
                    unknownEffect(about) + ".",
                longerTimeout(*about.stalledFor)};
    }
    auto [message, next] = adviceFor(error, about);
    Failure failure{std::string(nameOf(error)), std::move(message), std::move(next)};
    if (about.refusal && !about.refusal->words.empty()) {
        failure.message += " (\"" + about.refusal->words + "\")";
        failure.members.set("words", about.refusal->words);
    }
    failure.nothingWasSent = about.refusal && about.refusal->nothingWasSent;
    return failure;
}

} // namespace zelto::cli
