#include "meeting/MeetingDryRun.h"

#include "export/RequestDescription.h"
#include "export/RequestRecorder.h"
#include "meeting/MeetingTable.h"

namespace zelto::cli {

namespace {

std::string linesOf(const std::vector<PassedLimit>& limits, const Terminal& terminal) {
    std::string lines = limits.empty() ? "" : "\n";
    for (const auto& limit : limits) {
        lines += terminal.shown(sentenceOf(limit)) + "\n";
    }
    return lines;
}

} // namespace

Outcome<Report> meetingDryRun(MeetingWork& work, const MeetingOperation& operation,
                              const Terminal& terminal) {
    const auto type = work.serviceType();
    const auto recorder = RequestRecorder::start(
        [type](const SentRequest& request) { return StandInResponse{meetingStandIn(type, request.method)}; });
    if (!recorder) {
        return failure(recorder.error());
    }
    if (const auto ended = work.run(operation); !ended) {
        return failure(ended.error());
    }
    const auto requests = (*recorder)->requests();
    const auto limits = passedMeetingLimits(type, operation.title);
    Report report;
    report.members = {{"service", std::string(nameOf(type))},
                      {"identifier", work.identifier()},
                      {"dryRun", true},
                      {"requests", described(requests)},
                      {"limits", described(limits)}};
    report.text = terminal.shown("Would go to " + work.service() + ":") + "\n" + linesOf(requests, terminal) +
                  linesOf(limits, terminal);
    return report;
}

} // namespace zelto::cli
