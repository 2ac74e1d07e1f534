#pragma once

#include <Support/FailingResponses.h>
#include <Support/LogCapture.h>

#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Export/ExportReport.h>

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

namespace zelto {

// Which request of an export gets a failing response, and what the export comes to.
struct FailingStep {
    std::string part; // of its line or body
    IntegrationExportError error;
    std::string warning;               // before the name of the request's error
    std::vector<std::string> requests; // as made() of the server gives them
    std::size_t madeCount;             // of these
};

// Exports once for each step and response: the failure is logged, reported and given to the host once. An
// export is made ready by the function.
template <class Export, class Server>
void expectFailuresAt(std::span<const FailingStep> steps, std::span<const FailingResponse> responses,
                      const std::function<void(Export&)>& prepare) {
    for (const auto& step : steps) {
        for (const auto& failing : responses) {
            SCOPED_TRACE(step.part + " " + failing.name);
            Export one;
            prepare(one);
            Server service;
            service.respondTo(step.part, failing.response);
            const LogCapture log;
            const auto result = one.run();
            ASSERT_FALSE(result);
            EXPECT_EQ(result.error(), step.error);
            EXPECT_EQ(log.messages(LogLevel::warn), std::vector{step.warning + failing.error});
            EXPECT_EQ(service.made(), step.requests);
            const auto report = one.exporter()->exportReport();
            ASSERT_EQ(report.refused.size(), 1U);
            EXPECT_EQ(nameOf(report.refused.front().reason), failing.error);
            EXPECT_EQ(report.made.size(), step.madeCount);
            const auto events = one.interactor->exportEvents();
            ASSERT_EQ(events.size(), 1U);
            EXPECT_EQ(events.front().exportError, nameOf(step.error));
        }
    }
}

} // namespace zelto
