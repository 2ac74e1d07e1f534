#include "import/ImportFailures.h"

#include "base/FileFailure.h"
#include "base/ShellText.h"
#include "commandline/TimeoutOption.h"

#include <Platform/Text.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>
#include <vector>

namespace zelto::cli {

namespace {

using File = ImportReport::File;
// Why a file did not come, without the full stop, and the command to try next.
using Advice = std::pair<std::string, NextCommand>;

bool hasCome(const File& file) {
    return file.result && file.result->has_value();
}

// A download that was not begun was cancelled with the others.
DownloadError errorOf(const File& file) {
    return file.result ? file.result->error() : DownloadError{ServiceClientError::connectionError};
}

std::string named(const File& file) {
    return "\"" + escapeControlCharacters(file.info.fileName()) + "\"";
}

std::string reconnect(const std::string& account) {
    return "zelto reconnect " + shellWord(account);
}

std::string filesCommand(const std::string& account) {
    return "zelto files " + shellWord(account);
}

// What was typed, for the files that did not come.
NextCommand againForOthers(const ImportReport& report) {
    std::vector<std::string> others;
    for (const auto& file : report.files) {
        if (!hasCome(file)) {
            others.push_back(file.info.fileId() + ":" + file.info.fileName());
        }
    }
    return NextCommand::again({{"FILE_ID:NAME", std::move(others)}});
}

Advice reasonOf(const DownloadError& error, const ImportCircumstances& about) {
    const auto again = againForOthers(about.report);
    if (error.file) {
        return {error.file->message(), again};
    }
    switch (error.service) {
    case ServiceClientError::connectionError:
        return {error.refusal.nothingWasSent ? about.service + " could not be reached"
                                             : "the connection ended before the whole file had come",
                again};
    case ServiceClientError::authorizationError:
    case ServiceClientError::oauthError:
    case ServiceClientError::invalidAccount:
        return {about.service + " does not accept the account's sign-in any more", reconnect(about.account)};
    case ServiceClientError::forbidden:
        return {"the account may not read it, or it is no file that can be downloaded",
                filesCommand(about.account)};
    case ServiceClientError::itemNotFound:
        return {about.service + " has no such file", filesCommand(about.account)};
    case ServiceClientError::apiCallError:
        return {about.service + " refused the request", filesCommand(about.account)};
    case ServiceClientError::toManyRequests:
        return {about.service + " had too many requests; wait some minutes", again};
    case ServiceClientError::serviceInternalError:
        return {about.service + " had an error of its own; try again later", again};
    case ServiceClientError::dataParseError:
        return {"the response of " + about.service + " held no whole file", again};
    case ServiceClientError::internalError:
        return {"the request could not be made", again};
    }
    return {};
}

std::string sentenceOf(const File& file, const ImportCircumstances& about) {
    const auto error = errorOf(file);
    const auto words = error.refusal.words.empty() ? "" : " (\"" + error.refusal.words + "\")";
    return named(file) + ": " + reasonOf(error, about).first + words + ".";
}

JSONValue::Array described(const std::vector<File>& failed) {
    JSONValue::Array all;
    for (const auto& file : failed) {
        const auto error = errorOf(file);
        JSONObject object{
            {"id", file.info.fileId()},
            {"name", file.info.fileName()},
            {"reason", std::string(error.file ? nameOf(error.file->code) : nameOf(error.service))}};
        if (!error.refusal.words.empty()) {
            object.set("words", error.refusal.words);
        }
        all.emplace_back(std::move(object));
    }
    return all;
}

// The failure as a whole, as its first file tells.
Failure failureOf(const std::vector<File>& failed, const ImportCircumstances& about) {
    if (about.wasInterrupted) {
        return {"canceled", "The download was canceled.", againForOthers(about.report),
                ExitStatus::interrupted};
    }
    if (about.stalledFor) {
        return {"timedOut",
                "The download was given up: for the time of --timeout no file has ended, and hardly anything "
                "has moved.",
                longerTimeout(*about.stalledFor)};
    }
    const auto error = errorOf(failed.front());
    return {std::string(error.file ? nameOf(error.file->code) : nameOf(loadError(error.service))),
            (failed.size() == 1 ? "A file did not come: "
                                : std::to_string(failed.size()) + " files did not come; the first: ") +
                sentenceOf(failed.front(), about),
            reasonOf(error, about).second};
}

// Without the full stop.
Advice listingAdvice(IntegrationLoadError error, const std::string& service, const std::string& account,
                     const std::optional<std::string>& folder) {
    switch (error) {
    case IntegrationLoadError::oauthError:
        return {service + " does not accept the account's sign-in any more", reconnect(account)};
    case IntegrationLoadError::connectionError:
        return {service + " could not be reached", NextCommand::again()};
    case IntegrationLoadError::internalError:
        return folder
                   ? Advice{service + " did not list the folder \"" + *folder + "\"", filesCommand(account)}
                   : Advice{service + " did not list its files", NextCommand::againWith("--verbose")};
    }
    return {};
}

} // namespace

Failure listingFailure(IntegrationLoadError error, const std::string& service, const std::string& account,
                       const std::optional<std::string>& folder,
                       const std::optional<ServiceRefusal>& refusal) {
    auto [message, next] = listingAdvice(error, service, account, folder);
    Failure failure{std::string(nameOf(error)), std::move(message), std::move(next)};
    if (refusal && !refusal->words.empty()) {
        failure.message += " (\"" + refusal->words + "\")";
        failure.members.set("words", refusal->words);
    }
    failure.nothingWasSent = refusal && refusal->nothingWasSent;
    return failure;
}

Failure importFailure(const ImportCircumstances& about, const Terminal& terminal) {
    std::vector<File> failed;
    std::ranges::copy_if(about.report.files, std::back_inserter(failed), std::not_fn(hasCome));
    auto failure = failureOf(failed, about);
    failure.members.set("files", fetchedFiles(about.report));
    failure.members.set("failed", described(failed));
    failure.output = fetchedPaths(about.report, terminal);
    failure.nothingWasSent =
        failed.size() == about.report.files.size() &&
        std::ranges::all_of(failed, [](const File& file) { return errorOf(file).refusal.nothingWasSent; });
    const bool wasCancelled = about.wasInterrupted || about.stalledFor;
    for (std::size_t index = 1; index < failed.size() && !wasCancelled; ++index) {
        failure.details += sentenceOf(failed[index], about) + "\n";
    }
    return failure;
}

JSONValue::Array fetchedFiles(const ImportReport& report) {
    JSONValue::Array files;
    for (const auto& file : report.files) {
        if (hasCome(file)) {
            files.emplace_back(JSONObject{{"id", file.info.fileId()},
                                          {"name", file.info.fileName()},
                                          {"path", (*file.result)->native()}});
        }
    }
    return files;
}

std::string fetchedPaths(const ImportReport& report, const Terminal& terminal) {
    std::string paths;
    for (const auto& file : report.files) {
        paths += hasCome(file) ? terminal.shown((*file.result)->native()) + "\n" : "";
    }
    return paths;
}

} // namespace zelto::cli
