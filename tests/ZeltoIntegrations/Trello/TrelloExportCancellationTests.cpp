#include <Support/Eventually.h>
#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <future>
#include <iterator>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;

std::ptrdiff_t entriesIn(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

// What one export, cancelled at its n-th event, came to.
struct Cancelled {
    Texts events;
    std::optional<TrelloExport::VoidResult> result;
    int completions = 0;
    Texts made;
    ExportReport report;
};

// Events are numbered from 0, "started"; one that never comes cancels nothing.
class CancelledExport {
  public:
    CancelledExport(TrelloServer& service, std::size_t cancelledAt)
        : cancelledAt_(cancelledAt), service_(service), before_(std::ssize(service.made())) {
        one_.attach("a.txt");
        one_.data->onAsked = [this](const std::string& what) {
            started_.wait();
            happens(what);
        };
        const auto makePdf = one_.interactor->makePdf;
        one_.interactor->makePdf = [this, makePdf](const auto& html, const auto& path, Callback<bool> done) {
            happens("convert");
            makePdf(html, path, std::move(done));
        };
        service_.onRequest = [this](const ReceivedRequest&) {
            happens("request");
            return std::nullopt;
        };
        one_.interactor->onExportEvent = [this] { happens("analytics"); };
        one_.storage->onChange = [this] { happens("storage"); };
    }

    Cancelled run() {
        Completed<TrelloExport::VoidResult> completed;
        auto callback = completed.callback<TrelloExport::Done>();
        progress_ =
            one_.start([this, callback = std::move(callback)](TrelloExport::VoidResult result) mutable {
                ++outcome_.completions;
                happens("completion");
                callback(result);
            });
        progress_->setProgressHandler([this](float) { happens("progress"); });
        happens("started");
        start_.set_value();
        outcome_.result = completed.value();
        happens("ended");
        outcome_.report = one_.exporter()->exportReport();
        expectNothingIsLeft();
        const auto made = service_.made();
        outcome_.made.assign(made.begin() + before_, made.end());
        const std::lock_guard guard(lock_);
        return outcome_;
    }

  private:
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
        const std::weak_ptr<TrelloExporter> exporter = one_.exporter();
        const std::weak_ptr<ExportProgress> progress = progress_;
        one_.releaseExporter();
        progress_ = nullptr;
        EXPECT_TRUE(eventually([&] { return exporter.expired() && progress.expired(); }));
        EXPECT_TRUE(eventually([&] {
            return one_.data.use_count() == 1 && one_.interactor.use_count() == 1 &&
                   one_.storage.use_count() == 1;
        }));
    }

    const std::size_t cancelledAt_;
    TrelloServer& service_;
    const std::ptrdiff_t before_; // how much the service had made already
    std::mutex lock_;
    Cancelled outcome_;
    std::promise<void> start_;
    std::shared_future<void> started_ = start_.get_future().share();
    std::shared_ptr<ExportProgress> progress_;
    TrelloExport one_;
};

constexpr std::size_t never = 1000;

} // namespace

TEST(TrelloExportCancellation, HasTheseEvents) {
    TrelloServer service;
    const auto whole = CancelledExport(service, never).run();
    EXPECT_TRUE(*whole.result);
    EXPECT_EQ(whole.events,
              (Texts{"started", "link", "messagePlainText", "request", "progress", "html", "convert",
                     "progress", "request", "progress", "fetchAttachment", "progress", "request", "progress",
                     "analytics", "storage", "storage", "completion", "ended"}));
    EXPECT_EQ(whole.made, (Texts{"card", "file Title.pdf", "file a.txt"}));
}

TEST(TrelloExportCancellation, AtEachEventEndsOnceAndSendsNothingMore) {
    TrelloServer service;
    const auto events = CancelledExport(service, never).run().events;
    const auto lastProgress =
        events.size() - 1 -
        static_cast<std::size_t>(std::find(events.rbegin(), events.rend(), "progress") - events.rbegin());
    for (std::size_t at = 0; at < events.size(); ++at) {
        SCOPED_TRACE(std::to_string(at) + " " + events[at]);
        const auto outcome = CancelledExport(service, at).run();
        EXPECT_EQ(outcome.completions, 1);
        if (at <= lastProgress) {
            EXPECT_EQ(outcome.result->error(), Error::canceled);
        } else {
            EXPECT_TRUE(*outcome.result);
        }
        const auto sent =
            std::count(events.begin(), events.begin() + static_cast<std::ptrdiff_t>(at) + 1, "request");
        EXPECT_EQ(static_cast<std::ptrdiff_t>(outcome.made.size()), sent);
        // What was answered is told as made; what was cut off, as not known.
        EXPECT_EQ(outcome.report.made.size() + outcome.report.refused.size(), outcome.made.size());
        const bool isCutOff = events[at] == "request";
        EXPECT_EQ(outcome.report.refused.size(), isCutOff ? 1U : 0U);
        EXPECT_EQ(std::count(outcome.events.begin(), outcome.events.end(), "analytics"), 1);
    }
}

TEST(TrelloExportCancellation, LeavesNoThreadAndNoSocket) {
    TrelloServer service;
    const auto events = CancelledExport(service, never).run().events;
    const auto cancelAtEach = [&] {
        for (std::size_t at = 0; at < events.size(); ++at) {
            CancelledExport(service, at).run();
        }
    };
    cancelAtEach(); // by then the pool has all the threads that it takes for this
    const auto descriptors = entriesIn("/proc/self/fd");
    const auto threads = entriesIn("/proc/self/task");
    cancelAtEach();
    EXPECT_TRUE(eventually([&] { return entriesIn("/proc/self/fd") <= descriptors; }))
        << entriesIn("/proc/self/fd") << " of " << descriptors;
    EXPECT_TRUE(eventually([&] { return entriesIn("/proc/self/task") <= threads; }))
        << entriesIn("/proc/self/task") << " of " << threads;
}

TEST(TrelloExportCancellation, CutsOffARequestThatIsNeverAnswered) {
    TrelloExport one;
    std::promise<void> release;
    TrelloServer service;
    std::shared_ptr<ExportProgress> progress;
    std::promise<void> received;
    service.onRequest = [&, released = release.get_future().share()](const ReceivedRequest&) {
        received.set_value();
        released.wait();
        return std::nullopt;
    };
    Completed<TrelloExport::VoidResult> completed;
    progress = one.start(completed.callback<TrelloExport::Done>());
    received.get_future().wait();
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    release.set_value();
}

TEST(TrelloExportCancellation, DoesNotWaitForAHostThatNeverAnswers) {
    TrelloExport one;
    TrelloServer service;
    Callback<bool> kept;
    std::promise<void> asked;
    one.interactor->makePdf = [&](const auto&, const auto&, Callback<bool> done) {
        kept = std::move(done);
        asked.set_value();
    };
    std::atomic<int> completions = 0;
    Completed<TrelloExport::VoidResult> completed;
    const auto progress =
        one.start([&, callback = completed.callback<TrelloExport::Done>()](auto result) mutable {
            ++completions;
            callback(result);
        });
    asked.get_future().wait();
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    EXPECT_EQ(one.exporter()->exportReport().made.size(), 1U);

    // An answer that comes in the end changes nothing.
    kept(true);
    const std::weak_ptr<TrelloExporter> exporter = one.exporter();
    one.releaseExporter();
    EXPECT_TRUE(eventually([&] { return exporter.expired(); }));
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(service.made(), Texts{"card"});
}

TEST(TrelloExportCancellation, OfAnExportLeavesLoadingAndTheNextExportAlone) {
    TrelloExport one;
    TrelloServer service;
    Completed<TrelloExport::VoidResult> completed;
    std::promise<void> start;
    one.data->onAsked = [started = start.get_future().share()](const std::string&) { started.wait(); };
    const auto progress = one.start(completed.callback<TrelloExport::Done>());
    progress->cancel();
    start.set_value();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    EXPECT_EQ(service.lines(), Texts{});
    EXPECT_TRUE(one.load(true));
    EXPECT_TRUE(one.run());
}

TEST(TrelloExportCancellation, EndsLoadingThatWaitsBehindTheExport) {
    TrelloExport one;
    TrelloServer service;
    Completed<TrelloExport::VoidResult> completed;
    Completed<LoadResult<TrelloFullData>> loaded;
    std::promise<void> start;
    one.data->onAsked = [started = start.get_future().share()](const std::string&) { started.wait(); };
    const auto progress = one.start(completed.callback<TrelloExport::Done>());
    one.exporter()->loadData(true, loaded.callback<Callback<LoadResult<TrelloFullData>>>());
    progress->cancel();
    start.set_value();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    EXPECT_EQ(loaded.value().error(), IntegrationLoadError::connectionError);
}

} // namespace zelto
