#include "export/DryRun.h"

#include "export/FilesInFolder.h"
#include "export/RequestDescription.h"
#include "export/RequestRecorder.h"

#include <algorithm>
#include <iterator>

namespace zelto::cli {

namespace {

std::string planLine(const ExportPlan& plan, const MessageWork& work, const Terminal& terminal) {
    std::string files;
    for (const auto& name : plan.attachments) {
        files += ", " + name;
    }
    const auto title = plan.title.empty() ? "" : ": \"" + plan.title + "\"";
    return terminal.shown("Would go to " + work.service() + (plan.target.empty() ? "" : ", " + plan.target) +
                          title + " as " + std::string(nameOf(plan.saveAs)) + files + ".") +
           "\n";
}

std::string filesLine(const MessageWork& work, const Terminal& terminal) {
    const auto files = work.files();
    return files.empty() ? "" : terminal.shown("Would make " + namedInFolder(files) + ".") + "\n";
}

JSONObject describedPlan(const ExportPlan& plan, const MessageWork& work) {
    JSONValue::Array attachments;
    for (const auto& name : plan.attachments) {
        attachments.emplace_back(name);
    }
    return {{"service", std::string(nameOf(work.account.serviceType()))},
            {"identifier", work.account.identifier()},
            {"dryRun", true},
            {"title", plan.title},
            {"saveAs", std::string(nameOf(plan.saveAs))},
            {"target", plan.target},
            {"attachments", std::move(attachments)}};
}

std::string linesOf(const std::vector<std::string>& sentences, const Terminal& terminal) {
    std::string lines = sentences.empty() ? "" : "\n";
    for (const auto& sentence : sentences) {
        lines += terminal.shown(sentence) + "\n";
    }
    return lines;
}

JSONValue described(const std::vector<std::string>& sentences) {
    JSONValue::Array all;
    for (const auto& sentence : sentences) {
        all.emplace_back(sentence);
    }
    return all;
}

Failure failureOf(IntegrationExportError error, const MessageWork& work, const ExportPlan& plan,
                  Report report, bool hasRequests) {
    auto circumstances = work.circumstances(plan);
    // What the stand-in has responded to is on no service.
    circumstances.report = {};
    auto failed = exportFailure(error, circumstances);
    for (const auto& [key, value] : report.members) {
        failed.members.set(key, value);
    }
    if (hasRequests) {
        failed.output = std::move(report.text);
    }
    return failed;
}

} // namespace

Outcome<Report> dryRun(const MessageWork& work, const ExportPlan& plan, const Terminal& terminal,
                       const std::function<ExporterResult<void>()>& run) {
    const auto recorder = RequestRecorder::start(
        [&work](const SentRequest& request) { return work.session->standInResponse(request); });
    if (!recorder) {
        return failure(recorder.error());
    }
    const auto result = run();
    const auto requests = (*recorder)->requests();
    const auto limits = work.session->passedLimits(requests);
    const auto refusals = work.session->refusals(requests);
    auto sentences = refusals;
    const auto assumption = result ? work.session->assumption(requests) : std::string();
    if (!assumption.empty()) {
        sentences.insert(sentences.begin(), assumption);
    }
    std::ranges::transform(limits, std::back_inserter(sentences), sentenceOf);
    Report report{.members = describedPlan(plan, work),
                  .text = planLine(plan, work, terminal) + filesLine(work, terminal) +
                          linesOf(requests, terminal) + linesOf(sentences, terminal)};
    if (const auto files = work.files(); !files.empty()) {
        report.members.set("files", pathsOf(files));
    }
    report.members.set("requests", described(requests));
    report.members.set("limits", described(limits));
    if (!refusals.empty()) {
        report.members.set("refusals", described(refusals));
    }
    if (!assumption.empty()) {
        report.members.set("assumption", assumption);
    }
    if (!result) {
        return failure(failureOf(result.error(), work, plan, std::move(report), !requests.empty()));
    }
    return report;
}

} // namespace zelto::cli
