#include "export/ExportFailures.h"

#include "base/ShellText.h"
#include "commandline/TimeoutOption.h"
#include "export/Targets.h"

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/Joined.h>
#include <Platform/PercentEncoding.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <cstdint>
#include <ranges>
#include <utility>

namespace zelto::cli {

namespace {

using Refused = ExportReport::Refused;

const auto showsLog = NextCommand::againWith("--verbose");

// A title may have thousands of characters.
std::string named(const std::string& kind, const std::string& name) {
    constexpr std::size_t maximumLength = 100;
    const auto shown = prefixUTF16Units(name, maximumLength);
    return kind + " \"" + std::string(shown) + (shown.size() < name.size() ? "…" : "") + "\"";
}

std::string reconnectCommand(const std::string& account) {
    return "zelto reconnect " + shellWord(account);
}

// Whether nothing was made of what an export makes: files may go to a service before what they belong to.
bool isFirst(const Refused& refused, const ExportReport& report) {
    constexpr auto isFile = [](const std::string& kind) { return kind == "file"; };
    return report.made.empty() ||
           (!isFile(refused.kind) && std::ranges::all_of(report.made, isFile, &ExportReport::Made::kind));
}

// A message and the command to try next.
using Advice = std::pair<std::string, NextCommand>;

std::string bytes(std::uint64_t size) {
    return std::to_string(size) + (size == 1 ? " byte" : " bytes");
}

std::string tooLarge(const Refused& refused, const std::string& service) {
    const bool isFile = refused.kind == "file";
    return (isFile ? "the file, of " : "the request, of ") + bytes(*refused.excessiveSize) +
           ", is larger than " + service + " takes";
}

NextCommand withAnotherType(const ExportCircumstances& about) {
    return cli::withAnotherType(about.takenTypes, about.usualType, about.type);
}

// The export without an attachment, or in a form without the file that was made of the message.
NextCommand withoutFile(const Refused& refused, const ExportCircumstances& about) {
    auto others = about.attachments;
    if (refused.kind != "file" && !others.empty()) {
        return NextCommand::again("--attach", "none");
    }
    if (refused.kind != "file" || std::erase(others, refused.name) == 0) {
        return withAnotherType(about);
    }
    return NextCommand::again({{"--attach", others.empty() ? std::vector<std::string>{"none"} : others}});
}

NextCommand commandFor(RefusalAdvice::Remedy remedy, const ExportCircumstances& about) {
    using enum RefusalAdvice::Remedy;
    switch (remedy) {
    case again:
        return NextCommand::again();
    case otherTarget:
        return refreshCommand(about.account);
    case reconnect:
        return reconnectCommand(about.account);
    case otherType:
        return withAnotherType(about);
    case log:
        return showsLog;
    }
    return {};
}

Advice reasonOf(const Refused& refused, const ExportCircumstances& about) {
    if (about.fileError) {
        return {about.fileError->message(), NextCommand::again()};
    }
    if (about.advice) {
        return {about.advice->reason, commandFor(about.advice->remedy, about)};
    }
    switch (refused.reason) {
    case ServiceClientError::connectionError:
        return {refused.nothingWasSent ? "it could not be reached"
                                       : "the connection ended without a response",
                showsLog};
    case ServiceClientError::authorizationError:
    case ServiceClientError::oauthError:
        return {"it does not accept the account's sign-in any more", reconnectCommand(about.account)};
    case ServiceClientError::forbidden:
        return {"the account may not do that there", refreshCommand(about.account)};
    case ServiceClientError::itemNotFound:
        return {"what it was to go into is not there any more", refreshCommand(about.account)};
    case ServiceClientError::toManyRequests:
        return {"it had too many requests; wait some minutes", showsLog};
    case ServiceClientError::invalidAccount:
        return {"the account is not valid there", reconnectCommand(about.account)};
    case ServiceClientError::serviceInternalError:
        return {"it had an error of its own; try again later", showsLog};
    case ServiceClientError::apiCallError:
        if (refused.excessiveSize) {
            return {tooLarge(refused, about.service), withoutFile(refused, about)};
        }
        if (about.tellsMissingTargets) {
            return {"it refused the request", NextCommand::againWith("--dry-run")};
        }
        return isFirst(refused, about.report)
                   ? Advice{"it refused the request, and may not have what it was to go into any more",
                            refreshCommand(about.account)}
                   : Advice{"it refused the request", showsLog};
    case ServiceClientError::dataParseError:
        return {"its response cannot be read", showsLog};
    case ServiceClientError::internalError:
        return {"the request could not be made", showsLog};
    }
    return {};
}

// In quotes, for they are not the program's.
std::string wordsOf(const Refused& refused) {
    return refused.words.empty() ? "" : " (\"" + refused.words + "\")";
}

Advice refusal(const ExportCircumstances& about, const std::string& verb, const Advice& otherwise) {
    if (about.report.refused.empty()) {
        return otherwise;
    }
    const auto& first = about.report.refused.front();
    auto [reason, next] = reasonOf(first, about);
    return {about.service + " did not " + verb + " the " + named(first.kind, first.name) + ": " + reason +
                wordsOf(first) + ".",
            std::move(next)};
}

Advice notUTF8(const ExportCircumstances& about) {
    return {"The title or the text is not UTF-8.", NextCommand::again("--title", repairedUTF8(about.title))};
}

Advice noPDF(const ExportCircumstances& about) {
    const auto& error = about.pdfError;
    if (!error) {
        return {"The message could not be turned into a PDF.", showsLog};
    }
    return {"The message could not be turned into a PDF. " + error->message() + ".", withAnotherType(about)};
}

bool takes(const ExportCircumstances& about, IntegrationExportContentType type) {
    return std::ranges::find(about.takenTypes, nameOf(type)) != about.takenTypes.end();
}

// The link of the user's own has no option, and its type may be one that was remembered.
Advice noExternalLink(const ExportCircumstances& about) {
    return {"There is no external link; name one as \"externalLink\" in a file for --config-over.",
            withAnotherType(about)};
}

Advice noLink(const ExportCircumstances& about) {
    const std::string reason = "There is no link to the message, which an export as " + about.type +
                               " needs: a mail has one by its Message-ID.";
    const auto own = nameOf(IntegrationExportContentType::externalLink);
    if (takes(about, IntegrationExportContentType::externalLink)) {
        return {reason + " A link of your own goes as " + std::string(own) + ".",
                NextCommand::again("--as", std::string(own))};
    }
    return {reason, withAnotherType(about)};
}

Advice noBody(const ExportCircumstances& about) {
    if (about.pdfError) {
        return noPDF(about);
    }
    if (about.type == "externalLink") {
        return noExternalLink(about);
    }
    if (!isValidUTF8(about.title)) {
        return notUTF8(about);
    }
    if (!about.hasLink) {
        return noLink(about);
    }
    return {"The message has no text or no link of that kind.", withAnotherType(about)};
}

// As a URL can hold them; whoever gets it decodes them.
std::string encodedTags(const std::vector<std::string>& tags) {
    return joined(tags, ",", [](const std::string& tag) { return percentEncode(tag).value_or(""); });
}

// The error of the services without another one for a content that is missing.
Advice internalError(const ExportCircumstances& about) {
    if (about.fileError) {
        return {about.fileError->message() + ".", NextCommand::again()};
    }
    if (about.type == nameOf(IntegrationExportContentType::externalLink)) {
        return noExternalLink(about);
    }
    if (about.pdfError) {
        return noPDF(about);
    }
    if (!about.hasLink && takes(about, IntegrationExportContentType::externalLink)) {
        return noLink(about);
    }
    return {"The export to " + about.service + " met an internal error.", showsLog};
}

std::string alreadyThere(const ExportCircumstances& about) {
    constexpr std::size_t maximumCount = 10;
    const auto& files = about.existingFiles;
    if (files.empty()) {
        return "A file of that name exists already.";
    }
    const auto count = std::min(files.size(), maximumCount);
    const auto names = joined(files | std::views::take(count), ", ",
                              [](const std::string& name) { return named("", name).substr(1); });
    const auto others = files.size() - count;
    return "On " + about.service + " there is already " + names +
           (others > 0 ? " and " + std::to_string(others) + " more" : "") +
           ". Nothing was uploaded; the next command keeps both.";
}

// Of an export that ended for files of the same names: the other way to go on.
OtherCommand overriding() {
    return {"override", "To replace what is there: ", NextCommand::again("--policy", "overrideExisting"),
            "."};
}

JSONValue arrayOf(const std::vector<std::string>& texts) {
    JSONValue::Array all;
    for (const auto& text : texts) {
        all.emplace_back(text);
    }
    return all;
}

Advice adviceOn(IntegrationExportError error, const ExportCircumstances& about) {
    switch (error) {
    case IntegrationExportError::canceled:
        return about.hasStalled
                   ? Advice{"The export was given up: for the time of --timeout no step of it has ended, and "
                            "hardly anything has moved.",
                            longerTimeout(about.timeout)}
                   : Advice{"The export was canceled.", NextCommand::again()};
    case IntegrationExportError::internalError:
        return refusal(about, "take", internalError(about));
    case IntegrationExportError::createBodyError:
        return noBody(about);
    case IntegrationExportError::convertError:
        return noPDF(about);
    case IntegrationExportError::unsupportedFormat:
        return {about.service + " does not take that type; it takes " + joined(about.takenTypes, ", ") + ".",
                withAnotherType(about)};
    case IntegrationExportError::fileAlreadyExists:
        return {alreadyThere(about), NextCommand::again("--policy", "keepBoth")};
    case IntegrationExportError::oauthError:
        return refusal(about, "take",
                       {about.service + " does not accept the account's sign-in any more.",
                        reconnectCommand(about.account)});
    case IntegrationExportError::connectionError:
        return refusal(about, "take", {about.service + " could not be reached.", showsLog});
    case IntegrationExportError::createTaskError:
        return refusal(about, "make", {about.service + " did not make the task.", showsLog});
    case IntegrationExportError::uploadAttachmentError:
        return refusal(
            about, "take",
            {"An attachment could not be read from the message.", NextCommand::again("--attach", "none")});
    case IntegrationExportError::urlEncodeError:
        return notUTF8(about);
    case IntegrationExportError::createUrlError:
        return {
            "The title, the text and the tags make no URL; a tag with a blank, & or # is the usual reason.",
            NextCommand::again("--tags", encodedTags(about.tags))};
    case IntegrationExportError::xUrlCallbackError:
        return {about.openerFailure, NextCommand::again("--opener", "-")};
    }
    return {};
}

// An export that needs a target ends without one by an error that most services use for other failures too.
bool isForWantOfTarget(IntegrationExportError error, const ExportCircumstances& about) {
    const bool mayBe =
        error == IntegrationExportError::createTaskError || error == IntegrationExportError::internalError;
    return mayBe && about.missingTarget && about.report.refused.empty();
}

bool isUnsure(const Refused& refused) {
    return refused.isUnsure();
}

bool isCertain(const Refused& refused) {
    return !refused.isUnsure();
}

// What is wrong with a folder is told as its own case.
std::string nameOfFailure(IntegrationExportError error, const ExportCircumstances& about) {
    const bool isOfFolder = about.fileError && (error == IntegrationExportError::internalError ||
                                                error == IntegrationExportError::createTaskError);
    return std::string(isOfFolder ? nameOf(about.fileError->code) : nameOf(error));
}

std::string listOf(const std::vector<Refused>& refused, bool (*isListed)(const Refused&)) {
    return joined(refused | std::views::filter(isListed), ", ", [](const Refused& each) {
        const auto size = each.excessiveSize ? " (too large: " + bytes(*each.excessiveSize) + ")" : "";
        return named(each.kind, each.name) + size;
    });
}

std::string unknownOutcome(const ExportCircumstances& about) {
    const auto names = listOf(about.report.refused, isUnsure);
    return names.empty() ? ""
                         : " Whether " + about.service +
                               " has this is not known, since no response came: " + names + ".";
}

bool namesFirstRefusal(IntegrationExportError error) {
    using enum IntegrationExportError;
    return error == createTaskError || error == uploadAttachmentError || error == internalError ||
           error == oauthError || error == connectionError;
}

// An export may go on after a failure, and meet more of them.
std::string otherRefusals(IntegrationExportError error, const ExportCircumstances& about) {
    auto others = about.report.refused;
    if (namesFirstRefusal(error) && !others.empty()) {
        others.erase(others.begin());
    }
    const auto names = listOf(others, isCertain);
    return names.empty() ? "" : " Not on " + about.service + ": " + names + ".";
}

JSONObject membersOf(const Refused& refused) {
    JSONObject object{
        {"kind", refused.kind}, {"name", refused.name}, {"reason", std::string(nameOf(refused.reason))}};
    if (!refused.words.empty()) {
        object.set("words", refused.words);
    }
    if (refused.nothingWasSent) {
        object.set("nothingWasSent", true);
    }
    if (refused.excessiveSize) {
        object.set("tooLarge", true);
        object.set("size", static_cast<std::int64_t>(*refused.excessiveSize));
    }
    return object;
}

void add(std::string_view key, const std::vector<Refused>& refused, bool (*isListed)(const Refused&),
         JSONObject& members) {
    JSONValue::Array all;
    for (const auto& each : refused | std::views::filter(isListed)) {
        all.emplace_back(membersOf(each));
    }
    if (!all.empty()) {
        members.set(key, std::move(all));
    }
}

// Whether an export that began on the service may be repeated without a look at it.
bool nothingWasSent(const ExportReport& report) {
    return report.made.empty() && !report.refused.empty() &&
           std::ranges::all_of(report.refused, &Refused::nothingWasSent);
}

JSONObject membersOf(const ExportReport& report) {
    JSONObject members;
    if (!report.made.empty()) {
        members.set("made", described(report.made));
    }
    add("refused", report.refused, isCertain, members);
    add("unsure", report.refused, isUnsure, members);
    return members;
}

std::string thereAlready(const ExportCircumstances& about, const std::string& how, bool isContact) {
    auto made = about.report.made;
    std::erase_if(made,
                  [&](const ExportReport::Made& each) { return (each.kind == "contact") != isContact; });
    return made.empty() ? "" : " On " + about.service + " already" + how + ": " + cli::listOf(made) + ".";
}

// A contact is found by the next export; anything else is made once more.
std::string whatIsThere(const ExportCircumstances& about) {
    return thereAlready(about, ", and made again by another export", false) + thereAlready(about, "", true);
}

// Without the full stop.
Advice loadAdvice(IntegrationLoadError error, const std::string& service, const std::string& account) {
    switch (error) {
    case IntegrationLoadError::oauthError:
        return {service + " does not accept the account's sign-in any more", reconnectCommand(account)};
    case IntegrationLoadError::connectionError:
        return {service + " could not be reached", refreshCommand(account)};
    case IntegrationLoadError::internalError:
        return {"The data of " + service + " could not be loaded", refreshCommand(account) + " --verbose"};
    }
    return {};
}

} // namespace

NextCommand withAnotherType(const std::vector<std::string>& takenTypes, const std::string& usualType,
                            std::string_view type) {
    if (!usualType.empty() && usualType != type) {
        return NextCommand::again("--as", usualType);
    }
    const auto other = std::ranges::find_if(takenTypes, [&](const auto& each) { return each != type; });
    return other == takenTypes.end() ? NextCommand() : NextCommand::again("--as", *other);
}

Failure exportFailure(IntegrationExportError error, const ExportCircumstances& about) {
    auto [message, next] = isForWantOfTarget(error, about)
                               ? Advice{about.missingTarget->message, about.missingTarget->next}
                               : adviceOn(error, about);
    message += whatIsThere(about) + otherRefusals(error, about) + unknownOutcome(about);
    const bool hasStalled = error == IntegrationExportError::canceled && about.hasStalled;
    const auto status = error == IntegrationExportError::canceled && !hasStalled ? ExitStatus::interrupted
                                                                                 : ExitStatus::failed;
    auto name = hasStalled ? "timedOut" : nameOfFailure(error, about);
    Failure failure{std::move(name), std::move(message), std::move(next), status, membersOf(about.report)};
    failure.nothingWasSent = nothingWasSent(about.report);
    if (error == IntegrationExportError::fileAlreadyExists) {
        failure.members.set("existing", arrayOf(about.existingFiles));
        failure.other = overriding();
    }
    return failure;
}

Failure loadFailure(IntegrationLoadError error, const std::string& service, const std::string& account,
                    const std::optional<ServiceRefusal>& refusal,
                    const std::optional<RefusalAdvice>& advice) {
    auto [message, next] = loadAdvice(error, service, account);
    if (advice) {
        message += ": " + advice->reason;
        next =
            advice->remedy == RefusalAdvice::Remedy::reconnect ? reconnectCommand(account) : std::move(next);
    }
    Failure failure{std::string(nameOf(error)), std::move(message), std::move(next)};
    if (refusal && !refusal->words.empty()) {
        failure.message += " (\"" + refusal->words + "\")";
        failure.members.set("words", refusal->words);
    }
    failure.message += ".";
    failure.nothingWasSent = refusal && refusal->nothingWasSent;
    return failure;
}

std::string listOf(const std::vector<ExportReport::Made>& made) {
    return joined(made, ", ", [](const ExportReport::Made& each) { return named(each.kind, each.name); });
}

JSONValue described(const std::vector<ExportReport::Made>& made) {
    JSONValue::Array all;
    for (const auto& each : made) {
        JSONObject object{{"kind", each.kind}, {"name", each.name}};
        if (each.identifier) {
            object.set("identifier", *each.identifier);
        }
        all.emplace_back(std::move(object));
    }
    return all;
}

} // namespace zelto::cli
