#include <Support/Event.h>
#include <Support/HostMistakes.h>
#include <Support/ICloudExport.h>

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace zelto {

namespace {

using Error = IntegrationExportError;
using Done = FakeICloudClient::Done;
using Texts = std::vector<std::string>;

// Runs one export, which is cancelled at its n-th event, and lists the events.
class CancelledUpload {
  public:
    static constexpr std::size_t never = 1000;

    explicit CancelledUpload(IntegrationExportContentType type, std::size_t cancelledAt = never)
        : cancelledAt_(cancelledAt) {
        one_.configuration.saveAs = type;
        one_.attach("a.txt");
        one_.attach("b.txt");
        one_.data->onAsked = [this](const std::string& what) {
            isStarted_.wait();
            happens(what);
        };
        const auto makePdf = one_.interactor->makePdf;
        one_.interactor->makePdf = [this, makePdf](const auto& html, const auto& path, Callback<bool> done) {
            happens("convert");
            makePdf(html, path, std::move(done));
        };
        one_.client->onUpload = [this](Done done) {
            happens("uploadFile");
            done({});
        };
        one_.client->onClose = [this] { ++closings; };
        one_.interactor->onExportEvent = [this] { happens("analytics"); };
        one_.storage->onChange = [this] { happens("storage"); };
    }

    ExporterResult<void> run() {
        Completed<ExporterResult<void>> completed;
        progress_ = one_.start([this, callback = completed.callback<Completion<void, Error>>()](
                                   ExporterResult<void> result) mutable {
            ++completions;
            callback(result);
        });
        progress_->setProgressHandler([this](float) { happens("progress"); });
        isStarted_.set();
        auto result = completed.value();
        const std::weak_ptr progress = progress_;
        progress_ = nullptr;
        EXPECT_TRUE(one_.isGoneOnceReleased() && isGone(progress));
        return result;
    }

    std::size_t uploadCount() const { return one_.client->uploads().size(); }

    Texts events;
    int completions = 0;
    std::atomic<int> closings = 0;

  private:
    void happens(const std::string& what) {
        events.push_back(what);
        if (events.size() - 1 == cancelledAt_) {
            const auto progress = progress_;
            progress->cancel();
            progress->cancel();
        }
    }

    const std::size_t cancelledAt_;
    Event isStarted_;
    std::shared_ptr<ExportProgress> progress_;
    ICloudExport one_;
};

void expectOneEndAtEachCancellation(IntegrationExportContentType type, const Texts& events) {
    CancelledUpload whole(type);
    EXPECT_TRUE(whole.run());
    EXPECT_EQ(whole.events, events);
    const auto last = std::find(events.rbegin(), events.rend(), "progress").base() - events.begin() - 1;
    for (std::ptrdiff_t at = 0; at < std::ssize(events); ++at) {
        const auto& event = events[static_cast<std::size_t>(at)];
        SCOPED_TRACE(std::to_string(at) + " " + event);
        CancelledUpload cancelled(type, static_cast<std::size_t>(at));
        const auto result = cancelled.run();
        EXPECT_EQ(result,
                  at <= last ? ExporterResult<void>(failure(Error::canceled)) : ExporterResult<void>());
        EXPECT_EQ(cancelled.completions, 1);
        const auto before = std::count(events.begin(), events.begin() + at + 1, "uploadFile");
        EXPECT_EQ(cancelled.uploadCount(), static_cast<std::size_t>(before));
        EXPECT_EQ(cancelled.closings, before > 0 ? 1 : 0);
        EXPECT_EQ(std::count(cancelled.events.begin(), cancelled.events.end(), "analytics"), 1);
    }
}

class ICloudHostileClient : public testing::Test {
  protected:
    ICloudExport one;
};

} // namespace

TEST(ICloudCancelling, EndsAnExportAsPdfAtEachEvent) {
    expectOneEndAtEachCancellation(IntegrationExportContentType::pdf,
                                   {"html", "convert", "progress", "uploadFile", "progress",
                                    "fetchAttachment", "uploadFile", "progress", "fetchAttachment",
                                    "uploadFile", "progress", "analytics", "storage"});
}

TEST(ICloudCancelling, EndsAnExportAsTextAtEachEvent) {
    expectOneEndAtEachCancellation(IntegrationExportContentType::emailBacklink,
                                   {"messagePlainText", "progress", "uploadFile", "progress",
                                    "fetchAttachment", "uploadFile", "progress", "fetchAttachment",
                                    "uploadFile", "progress", "analytics", "storage"});
}

TEST_F(ICloudHostileClient, CancellingEndsAnExportWhoseClientNeverCallsBack) {
    Done kept;
    Event isAsked;
    std::atomic<int> closings = 0;
    one.client->onClose = [&] { ++closings; };
    one.client->onUpload = [&](Done done) {
        kept = std::move(done);
        isAsked.set();
    };
    Completed<ExporterResult<void>> completed;
    const auto progress = one.start(completed.callback<Completion<void, Error>>());
    isAsked.wait();
    EXPECT_FALSE(completed.hasCome());
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    EXPECT_EQ(closings, 1);
    // It may be there all the same.
    EXPECT_EQ(
        one.exporter()->exportReport(),
        (ExportReport{.made = {}, .refused = {{"file", "Title.pdf", ServiceClientError::connectionError}}}));
    kept({});
    EXPECT_TRUE(one.isGoneOnceReleased());
}

TEST_F(ICloudHostileClient, ACallThatComesLateOnAnotherThreadEndsTheExport) {
    Done kept;
    Event isAsked;
    one.client->onUpload = [&](Done done) {
        kept = std::move(done);
        isAsked.set();
    };
    Completed<ExporterResult<void>> completed;
    one.start(completed.callback<Completion<void, Error>>());
    isAsked.wait();
    std::thread([&] { kept({}); }).join();
    EXPECT_TRUE(completed.value());
}

TEST_F(ICloudHostileClient, ACallbackThatIsDroppedCountsAsAFailure) {
    const DroppedCallbacks dropped;
    one.client->onUpload = [](const Done&) {};
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(dropped.count(), 1);
}

TEST_F(ICloudHostileClient, AClientThatThrowsCountsAsAFailure) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.client->onUpload = [](const Done&) { throw std::runtime_error("the client threw"); };
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_TRUE(contained.haveCome(1));
}

TEST_F(ICloudHostileClient, AClientThatThrowsAfterItsCallDoesNotChangeTheResult) {
    const ContainedExceptions contained;
    one.client->onUpload = [](Done done) {
        done({});
        throw std::runtime_error("the client threw");
    };
    EXPECT_TRUE(one.run());
    EXPECT_TRUE(contained.haveCome(1));
}

#ifdef NDEBUG // a debug build stops at the second call
TEST_F(ICloudHostileClient, TheFirstOfTwoCallsCounts) {
    one.client->onUpload = [](Done done) {
        done({});
        done(failure(ICloudClientError::internalError));
    };
    int completions = 0;
    Completed<ExporterResult<void>> completed;
    one.start([&, callback = completed.callback<Completion<void, Error>>()](auto result) mutable {
        ++completions;
        callback(std::move(result));
    });
    EXPECT_TRUE(completed.value());
    EXPECT_TRUE(one.isGoneOnceReleased());
    EXPECT_EQ(completions, 1);
}
#endif

TEST_F(ICloudHostileClient, AHostThatThrowsEndsTheExportOnce) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.interactor->makePdf = [](const auto&, const auto&, const auto&) {
        throw std::runtime_error("the host threw");
    };
    EXPECT_EQ(one.run().error(), Error::convertError);
    EXPECT_TRUE(contained.haveCome(1));
    EXPECT_EQ(one.interactor->exportEvents().size(), 1U);
}

TEST_F(ICloudHostileClient, TwoExportsAtOncePutTwoFiles) {
    Completed<ExporterResult<void>> first;
    Completed<ExporterResult<void>> second;
    one.start(first.callback<Completion<void, Error>>());
    one.start(second.callback<Completion<void, Error>>());
    EXPECT_TRUE(first.value());
    EXPECT_TRUE(second.value());
    EXPECT_EQ(one.client->uploads().size(), 2U);
}

} // namespace zelto
