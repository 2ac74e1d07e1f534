#pragma once

#include <Support/ExportScenario.h>
#include <Support/FailingExports.h>
#include <Support/HostFailures.h>
#include <Support/Suites/ExportAttachmentsSuite.h>

#include <ZeltoIntegrations/Content/IntegrationError.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What an export of a PDF and three files to a drive comes to, whichever drive it is.
template <class Export, class Server> struct DriveScenario : ScenarioWithFiles<Export, Server> {
    using Texts = std::vector<std::string>;
    using Error = IntegrationExportError;

    static constexpr int refusedFormatUnits = 0;
    static constexpr auto refreshError = Error::oauthError;
    static constexpr std::optional<std::size_t> attachmentLimit = std::nullopt;

    static Texts events() { return withFiles({"started", "html", "convert"}); }

    // The check, the message, the files.
    static Texts withFiles(Texts body) {
        for (const auto* event :
             {"progress", "request", "progress", "request", "progress", "fetchAttachment", "request",
              "progress", "fetchAttachment", "request", "progress", "fetchAttachment", "request", "progress",
              "analytics", "storage", "completion", "ended"}) {
            body.emplace_back(event);
        }
        return body;
    }

    static Texts made() { return {"file Title.pdf", "file a.txt", "file b.txt", "file c.txt"}; }

    static std::vector<HostFailure> withAttachments(std::vector<HostFailure> failures, const Texts& all) {
        using enum HostMistake;
        const Texts madeBefore = {all.begin(), all.begin() + 2};
        failures.push_back(
            {"fetchAttachment", {hasNoValue}, failure(Error::uploadAttachmentError), madeBefore});
        failures.push_back(
            {"fetchAttachment", {throws, dropsItsCallback}, failure(Error::internalError), madeBefore});
        failures.push_back({"fetchAttachment",
                            {namesAWebPage, namesAMissingFile},
                            failure(Error::internalError),
                            madeBefore});
        return failures;
    }

    static std::vector<HostFailure> hostFailures() {
        using enum HostMistake;
        const auto noPdf = failure(Error::convertError);
        return withAttachments({{"html", {hasNoValue, throws, dropsItsCallback}, noPdf, {}},
                                {"convert", {hasNoValue, throws, dropsItsCallback}, noPdf, {}},
                                {"convert", {namesAMissingFile}, failure(Error::internalError), {}}},
                               made());
    }

    // The error of each request is mapped by the shared table.
    static std::vector<FailingStep> failingSteps(const std::string& service, const std::string& check,
                                                 std::string (*uploadOf)(const std::string& name)) {
        const auto all = made();
        const std::vector<FailingResponse> noJSON = {
            {"no JSON", PlayedResponse::json("<html>"), "dataParseError"}};
        const auto warning = service + " uploading file error: ";
        std::vector<FailingStep> steps = {
            {check, std::nullopt, service + " checking files error: ", {}, 0, unreadableResponses()}};
        for (std::size_t index = 0; index < all.size(); ++index) {
            steps.push_back({uploadOf(all[index].substr(5)),
                             std::nullopt,
                             warning,
                             {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(index) + 1},
                             index,
                             noJSON});
        }
        return steps;
    }

    static auto fileSizeLimits() {
        using Exporter = typename Export::Exporter;
        return std::vector<FileSizeLimit<Exporter>>{{[](Exporter&) {}, 20'971'520}};
    }
};

} // namespace zelto
