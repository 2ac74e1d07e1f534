#include <Support/Event.h>
#include <Support/EvernoteExport.h>
#include <Support/HostMistakes.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace zelto {

namespace {

using Error = IntegrationExportError;
using NoteDone = FakeEvernoteClient::NoteDone;
using Texts = std::vector<std::string>;

// Runs one export, which is cancelled at its n-th event, and lists the events.
class CancelledNote {
  public:
    static constexpr std::size_t never = 1000;

    explicit CancelledNote(IntegrationExportContentType type, std::size_t cancelledAt = never)
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
        one_.client->onNote = [this](NoteDone done) {
            happens("createNote");
            done({});
        };
    }

    ExporterResult<void> run() {
        Completed<ExporterResult<void>> completed;
        progress_ = one_.start([this, callback = completed.callback<Completion<void, Error>>()](
                                   ExporterResult<void> result) mutable {
            ++completions;
            callback(result);
        });
        isStarted_.set();
        auto result = completed.value();
        progress_ = nullptr;
        EXPECT_TRUE(one_.isGoneOnceReleased());
        return result;
    }

    std::size_t noteCount() const { return one_.client->notes().size(); }

    Texts events;
    int completions = 0;

  private:
    void happens(const std::string& what) {
        events.push_back(what);
        if (events.size() - 1 == cancelledAt_) {
            progress_->cancel();
        }
    }

    const std::size_t cancelledAt_;
    Event isStarted_;
    std::shared_ptr<ExportProgress> progress_;
    EvernoteExport one_;
};

void expectOneEndAtEachCancellation(IntegrationExportContentType type, const Texts& events) {
    CancelledNote whole(type);
    EXPECT_TRUE(whole.run());
    EXPECT_EQ(whole.events, events);
    for (std::size_t at = 0; at < events.size(); ++at) {
        SCOPED_TRACE(std::to_string(at) + " " + events[at]);
        CancelledNote cancelled(type, at);
        EXPECT_EQ(cancelled.run(), ExporterResult<void>(failure(Error::canceled)));
        EXPECT_EQ(cancelled.completions, 1);
        EXPECT_EQ(cancelled.noteCount(), events[at] == "createNote" ? 1U : 0U);
    }
}

class EvernoteHostileClient : public testing::Test {
  protected:
    EvernoteExport one;
};

} // namespace

TEST(EvernoteCancelling, EndsAnExportOfAMailAtEachEvent) {
    expectOneEndAtEachCancellation(
        IntegrationExportContentType::emailBacklink,
        {"fetchAttachment", "fetchAttachment", "link", "link", "enml", "createNote"});
}

TEST(EvernoteCancelling, EndsAnExportOfAMeetingNoteAtEachEvent) {
    expectOneEndAtEachCancellation(
        IntegrationExportContentType::mtSummaryBacklink,
        {"fetchAttachment", "fetchAttachment", "link", "link", "meetTranscript", "enml", "createNote"});
}

TEST(EvernoteCancelling, EndsAnExportAsPdfAtEachEvent) {
    expectOneEndAtEachCancellation(
        IntegrationExportContentType::pdf,
        {"fetchAttachment", "fetchAttachment", "link", "link", "html", "convert", "createNote"});
}

TEST_F(EvernoteHostileClient, CancellingEndsAnExportWhoseClientNeverCallsBack) {
    NoteDone kept;
    Event isAsked;
    std::atomic<int> cancellations = 0;
    one.client->onCancel = [&] { ++cancellations; };
    one.client->onNote = [&](NoteDone done) {
        kept = std::move(done);
        isAsked.set();
    };
    Completed<ExporterResult<void>> completed;
    const auto progress = one.start(completed.callback<Completion<void, Error>>());
    isAsked.wait();
    EXPECT_FALSE(completed.hasCome());
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    EXPECT_EQ(cancellations, 1);
    // It may be there all the same.
    EXPECT_EQ(
        one.exporter()->exportReport(),
        (ExportReport{.made = {}, .refused = {{"note", "Title", ServiceClientError::connectionError}}}));
    kept({});
    EXPECT_TRUE(one.isGoneOnceReleased());
}

TEST_F(EvernoteHostileClient, ACallThatComesLateOnAnotherThreadEndsTheExport) {
    NoteDone kept;
    Event isAsked;
    one.client->onNote = [&](NoteDone done) {
        kept = std::move(done);
        isAsked.set();
    };
    Completed<ExporterResult<void>> completed;
    one.start(completed.callback<Completion<void, Error>>());
    isAsked.wait();
    std::thread([&] { kept({}); }).join();
    EXPECT_TRUE(completed.value());
}

TEST_F(EvernoteHostileClient, ACallbackThatIsDroppedCountsAsAFailure) {
    const DroppedCallbacks dropped;
    one.client->onNote = [](const NoteDone&) {};
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    one.client->onFetch = [](const auto&) {};
    EXPECT_EQ(one.load(true), EvernoteExport::LoadResult(failure(IntegrationLoadError::internalError)));
    EXPECT_EQ(dropped.count(), 2);
}

TEST_F(EvernoteHostileClient, AClientThatThrowsCountsAsAFailure) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.client->onNote = [](const NoteDone&) { throw std::runtime_error("the client threw"); };
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    one.client->onFetch = [](const auto&) { throw std::runtime_error("the client threw"); };
    EXPECT_EQ(one.load(true), EvernoteExport::LoadResult(failure(IntegrationLoadError::internalError)));
    EXPECT_TRUE(contained.haveCome(2));
}

TEST_F(EvernoteHostileClient, AClientThatThrowsAfterItsCallDoesNotChangeTheResult) {
    const ContainedExceptions contained;
    one.client->onNote = [](NoteDone done) {
        done({});
        throw std::runtime_error("the client threw");
    };
    EXPECT_TRUE(one.run());
    EXPECT_TRUE(contained.haveCome(1));
}

#ifdef NDEBUG // a debug build stops at the second call
TEST_F(EvernoteHostileClient, TheFirstOfTwoCallsCounts) {
    one.client->onNote = [](NoteDone done) {
        done({});
        done(failure(EvernoteClientError::connectionError));
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

TEST_F(EvernoteHostileClient, APlatformThatThrowsEndsTheExportOnce) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.interactor->clientOfEvernote = [](const auto&) -> std::shared_ptr<EvernoteClient> {
        throw std::runtime_error("the host threw");
    };
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_TRUE(contained.haveCome(1));
    EXPECT_EQ(one.interactor->exportEvents().size(), 1U);
}

TEST_F(EvernoteHostileClient, TwoExportsAtOnceMakeTwoNotes) {
    Completed<ExporterResult<void>> first;
    Completed<ExporterResult<void>> second;
    one.start(first.callback<Completion<void, Error>>());
    one.start(second.callback<Completion<void, Error>>());
    EXPECT_TRUE(first.value());
    EXPECT_TRUE(second.value());
    EXPECT_EQ(one.client->notes().size(), 2U);
}

} // namespace zelto
