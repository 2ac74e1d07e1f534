#pragma once

#include <Support/ExportScenario.h>
#include <Support/FailingResponses.h>
#include <Support/LogCapture.h>

#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Export/ExportReport.h>

#include <gtest/gtest.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zelto {

// Which request of an export gets a failing response, and what the export comes to.
struct FailingStep {
    std::string part;                            // of its line or body
    std::optional<IntegrationExportError> error; // without one that of the request is passed on, mapped
    // Before the name of the request's error; `nullopt` where the service logs no failure.
    std::optional<std::string> warning;
    std::vector<std::string> requests; // as made() of the server gives them
    std::size_t madeCount;             // of these
    // Successful responses that fail it as well.
    std::vector<FailingResponse> unreadable = {};
};

// What is logged when that response fails that step.
inline std::vector<std::string> warningsOf(const FailingStep& step, const FailingResponse& failing) {
    return step.warning ? std::vector{*step.warning + failing.error} : std::vector<std::string>();
}

// What the export ends with then.
inline IntegrationExportError errorOf(const FailingStep& step, const FailingResponse& failing) {
    return step.error.value_or(exportError(fromName<ServiceClientError>(failing.error).value()));
}

// Exports once for each response: the failure is logged, reported and given to the host once.
template <ExportScenario Scenario>
void expectFailuresAt(const FailingStep& step, std::span<const FailingResponse> responses) {
    for (const auto& failing : responses) {
        SCOPED_TRACE(step.part + " " + failing.name);
        Prepared<Scenario> one;
        typename Scenario::Server service;
        service.respondTo(step.part, failing.response);
        const LogCapture log;
        EXPECT_EQ(one.run(), failure(errorOf(step, failing)));
        EXPECT_EQ(log.messages(LogLevel::warn), warningsOf(step, failing));
        EXPECT_EQ(service.made(), step.requests);
        const auto report = one.exporter()->exportReport();
        ASSERT_EQ(report.refused.size(), 1U);
        EXPECT_EQ(nameOf(report.refused.front().reason), failing.error);
        EXPECT_EQ(report.made.size(), step.madeCount);
        const auto events = one.interactor->exportEvents();
        ASSERT_EQ(events.size(), 1U);
        EXPECT_EQ(events.front().exportError, nameOf(errorOf(step, failing)));
    }
}

} // namespace zelto
