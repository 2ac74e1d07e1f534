#pragma once

#include <Support/Completed.h>
#include <Support/Event.h>
#include <Support/ExportScenario.h>

#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Export/ExportProgress.h>
#include <ZeltoIntegrations/Export/ExportReport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What one export, cancelled at its n-th event, came to.
struct Cancelled {
    std::vector<std::string> events;
    std::optional<ExporterResult<void>> result;
    int completions = 0;
    std::vector<std::string> lines; // of its requests
    std::vector<std::string> made;  // by them
    bool lastMakes = false;         // something, of them
    ExportReport report;
};

// Runs one export and cancels it at its n-th event, on the thread of the event. Events are "started", the
// texts that the host is asked for, "convert", "request", "progress", "analytics", "storage", "completion"
// and "ended". They are numbered from 0, "started"; one that never comes cancels nothing.
template <ExportScenario Scenario> class CancelledExport {
  public:
    using Server = typename Scenario::Server;
    static constexpr std::size_t never = 1000;

    explicit CancelledExport(Server& service, std::size_t cancelledAt = never)
        : cancelledAt_(cancelledAt), service_(service), linesBefore_(std::ssize(service.lines())),
          madeBefore_(std::ssize(service.made())) {
        one_.data->onAsked = [this](const std::string& what) {
            started_.wait();
            happens(what);
        };
        const auto makePdf = one_.interactor->makePdf;
        one_.interactor->makePdf = [this, makePdf](const auto& html, const auto& path, Callback<bool> done) {
            happens("convert");
            makePdf(html, path, std::move(done));
        };
        service_.onRequest = [this](const auto&) {
            happens("request");
            return std::nullopt;
        };
        one_.interactor->onExportEvent = [this] { happens("analytics"); };
        one_.storage->onChange = [this] { happens("storage"); };
    }

    Cancelled run() {
        Completed<ExporterResult<void>> completed;
        auto callback = completed.template callback<Completion<void, IntegrationExportError>>();
        progress_ = one_.start([this, callback = std::move(callback)](ExporterResult<void> result) mutable {
            ++outcome_.completions;
            happens("completion");
            callback(result);
        });
        progress_->setProgressHandler([this](float) { happens("progress"); });
        happens("started");
        started_.set();
        outcome_.result = completed.value();
        happens("ended");
        outcome_.report = one_.exporter()->exportReport();
        expectNothingIsLeft();
        outcome_.lines = behind(service_.lines(), linesBefore_);
        outcome_.made = behind(service_.made(), madeBefore_);
        outcome_.lastMakes = service_.lastMakes();
        const std::lock_guard guard(lock_);
        return outcome_;
    }

  private:
    static std::vector<std::string> behind(const std::vector<std::string>& all, std::ptrdiff_t before) {
        return {all.begin() + before, all.end()};
    }

    void happens(const std::string& what) {
        const auto number = [&] {
            const std::lock_guard guard(lock_);
            outcome_.events.push_back(what);
            return outcome_.events.size() - 1;
        }();
        if (number == cancelledAt_) {
            // The first may end the export, and the test with it.
            const auto progress = progress_;
            progress->cancel();
            progress->cancel();
        }
    }

    void expectNothingIsLeft() {
        const std::weak_ptr progress = progress_;
        progress_ = nullptr;
        EXPECT_TRUE(one_.isGoneOnceReleased() && isGone(progress));
        EXPECT_TRUE(eventually([&] {
            return one_.data.use_count() == 1 && one_.interactor.use_count() == 1 &&
                   one_.storage.use_count() == 1;
        }));
    }

    const std::size_t cancelledAt_;
    Server& service_;
    const std::ptrdiff_t linesBefore_; // how many there were already
    const std::ptrdiff_t madeBefore_;
    std::mutex lock_;
    Cancelled outcome_;
    Event started_;
    std::shared_ptr<ExportProgress> progress_;
    Prepared<Scenario> one_;
};

// Cancels the export at each of its events: it ends once, sends nothing more, and reports what it has made.
template <ExportScenario Scenario> void expectOneEndAtEachCancellation() {
    typename Scenario::Server service;
    const auto events = CancelledExport<Scenario>(service).run().events;
    const auto lastProgress =
        std::find(events.rbegin(), events.rend(), "progress").base() - events.begin() - 1;
    for (std::ptrdiff_t at = 0; at < std::ssize(events); ++at) {
        const auto& event = events[static_cast<std::size_t>(at)];
        SCOPED_TRACE(std::to_string(at) + " " + event);
        const auto outcome = CancelledExport<Scenario>(service, static_cast<std::size_t>(at)).run();
        EXPECT_EQ(outcome.completions, 1);
        if (at <= lastProgress) {
            ASSERT_FALSE(*outcome.result);
            EXPECT_EQ(outcome.result->error(), IntegrationExportError::canceled);
        } else {
            EXPECT_TRUE(*outcome.result);
        }
        EXPECT_EQ(std::ssize(outcome.lines), std::count(events.begin(), events.begin() + at + 1, "request"));
        // What has a response is reported as made; what was cut off, as not known.
        EXPECT_EQ(outcome.report.made.size() + outcome.report.refused.size(), outcome.made.size());
        EXPECT_EQ(outcome.report.refused.size(), event == "request" && outcome.lastMakes ? 1U : 0U);
        EXPECT_EQ(std::count(outcome.events.begin(), outcome.events.end(), "analytics"), 1);
    }
}

} // namespace zelto
