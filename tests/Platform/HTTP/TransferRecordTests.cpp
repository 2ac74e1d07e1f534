#include <Platform/HTTP/TransferRecord.h>

#include <Platform/HTTP/URLSession.h>

#include <Support/RecordingDelegate.h>
#include <Support/SessionTasks.h>
#include <Support/TestHTTPServer.h>

#include <gtest/gtest.h>

#include <mutex>
#include <stdexcept>
#include <vector>

namespace zelto {

namespace {

// Takes the records of the tasks that end while it lives.
class TransferRecords : public testing::Test {
  protected:
    TransferRecords() {
        setTransferObserver([this](const TransferRecord& record) {
            const std::lock_guard guard(lock_);
            records_.push_back(record);
        });
    }

    ~TransferRecords() override { setTransferObserver(nullptr); }

    std::vector<TransferRecord> records() const {
        const std::lock_guard guard(lock_);
        return records_;
    }

    // The one record of a request to that server.
    TransferRecord recordOf(const URLRequest& request) {
        URLSession session(URLSessionConfiguration::ephemeral());
        (void)TaskEnd::of(session, request);
        const auto all = records();
        EXPECT_EQ(all.size(), 1U);
        return all.at(0);
    }

  private:
    mutable std::mutex lock_;
    std::vector<TransferRecord> records_;
};

} // namespace

TEST_F(TransferRecords, SayWhatWasSentAndWhatCame) {
    const TestHTTPServer server(
        [](const ReceivedRequest&) { return PlayedResponse{.status = 404, .body = "not here"}; });
    URLRequest request(server.url("/a%20b?token=x"), "POST");
    request.body = HTTPBody("12345");
    const auto record = recordOf(request);
    EXPECT_EQ(record.method, "POST");
    EXPECT_EQ(record.url, request.url);
    EXPECT_EQ(record.status, 404);
    EXPECT_EQ(record.error, std::nullopt);
    EXPECT_EQ(record.requestSize, 5U);
    EXPECT_EQ(record.responseSize, 8U);
    EXPECT_GE(record.duration.count(), 0);
}

TEST_F(TransferRecords, OfAFailureNameIt) {
    const TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse::reset(); });
    const auto record = recordOf(URLRequest(server.url("/"), "POST"));
    EXPECT_EQ(record.status, std::nullopt);
    EXPECT_EQ(record.error, URLErrorCode::connectionLost);
    EXPECT_EQ(record.responseSize, 0U);
}

TEST_F(TransferRecords, OfARequestThatMayNotBeSentNameThatToo) {
    EXPECT_EQ(recordOf(URLRequest(*URL::parse("http://service.example/"))).error,
              URLErrorCode::invalidRequest);
}

TEST_F(TransferRecords, OfATaskWithADelegateCountWhatItWasGiven) {
    const TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "123456789"}; });
    const auto delegate = std::make_shared<RecordingDelegate>();
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    session.dataTask(URLRequest(server.url("/")))->resume();
    delegate->eventsAfter(1);
    const auto all = records();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].status, 200);
    EXPECT_EQ(all[0].responseSize, 9U);
}

TEST_F(TransferRecords, AreTakenOneForEachTask) {
    const TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{}; });
    const auto delegate = std::make_shared<RecordingDelegate>();
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    constexpr int count = 100;
    for (int number = 0; number < count; ++number) {
        session.dataTask(URLRequest(server.url("/")))->resume();
    }
    delegate->eventsAfter(count);
    EXPECT_EQ(records().size(), static_cast<std::size_t>(count));
}

TEST_F(TransferRecords, AnObserverThatThrowsHarmsNoTask) {
    setTransferObserver([](const TransferRecord&) { throw std::runtime_error("no"); });
    const TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "ok"}; });
    URLSession session(URLSessionConfiguration::ephemeral());
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url("/"))).text(), "ok");
}

TEST_F(TransferRecords, EndWithTheObserver) {
    setTransferObserver(nullptr);
    const TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "ok"}; });
    URLSession session(URLSessionConfiguration::ephemeral());
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url("/"))).text(), "ok");
    EXPECT_EQ(records().size(), 0U);
}

} // namespace zelto
