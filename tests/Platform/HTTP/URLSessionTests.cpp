#include <Platform/HTTP/URLSession.h>

#include "Support/RecordingDelegate.h"
#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

namespace zelto {
namespace {

TEST(URLSession, AGetBringsTheWholeResponse) {
    TestHTTPServer server({{.status = 201, .body = "hello", .fields = {{"X-Mark", "one"}}}});
    URLSession session(URLSessionConfiguration::ephemeral());
    URLRequest request(server.url("/a%20b?c=d"));
    request.headers.set("Authorization", "Bearer token");
    const auto response = TaskEnd::of(session, std::move(request));
    EXPECT_EQ(response.error, std::nullopt);
    EXPECT_EQ(response.text(), "hello");
    EXPECT_EQ(response.status(), 201);
    EXPECT_EQ(response.http().header("x-mark"), "one");
    EXPECT_EQ(server.texts(), std::vector<std::string>{"GET /a%20b?c=d\nAuthorization: Bearer token\n\n"});
}

TEST(URLSession, EachMethodGoesOutWithItsBodyAsItIs) {
    TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "ok"}; });
    URLSession session(URLSessionConfiguration::ephemeral());
    for (const auto* method : {"POST", "PUT", "PATCH", "DELETE", "GET", "REPORT"}) {
        URLRequest request(server.url("/x"), method);
        request.headers.set("Content-Type", "text/plain");
        request.headers.set("Content-Length", "999");
        request.body = HTTPBody("body of " + std::string(method));
        EXPECT_EQ(TaskEnd::of(session, request).text(), "ok") << method;
        EXPECT_EQ(server.texts().back(),
                  std::string(method) + " /x\nContent-Type: text/plain\nContent-Length: " +
                      std::to_string(8 + std::string(method).size()) + "\n\nbody of " + method);
    }
}

TEST(URLSession, ALargeBodyIsSentWhole) {
    TestHTTPServer server({{.body = "done"}});
    URLSession session(URLSessionConfiguration::ephemeral());
    std::string text;
    while (text.size() < 3'000'000) {
        text += std::to_string(text.size()) + " ";
    }
    URLRequest request(server.url(), "POST");
    request.body = HTTPBody(text);
    EXPECT_EQ(TaskEnd::of(session, std::move(request)).text(), "done");
    EXPECT_EQ(server.texts().at(0), "POST /\nContent-Length: " + std::to_string(text.size()) + "\n\n" + text);
}

TEST(URLSession, TheDelegateHearsOfResponseDataAndEndInThisOrder) {
    TestHTTPServer server({{.body = "hello"}, {.status = 404, .body = "gone"}});
    const auto delegate = std::make_shared<RecordingDelegate>();
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    delegate->onEnd = [&](URLSessionDataTask& task) {
        if (task.taskIdentifier() == 1) {
            session.dataTask(URLRequest(server.url()))->resume();
        }
    };
    session.dataTask(URLRequest(server.url()))->resume();
    EXPECT_EQ(delegate->eventsAfter(2), (std::vector<std::string>{"1 response 200", "1 data hello", "1 end",
                                                                  "2 response 404", "2 data gone", "2 end"}));
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST(URLSession, ATaskThatIsCancelledBeforeItBeginsSendsNothing) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    URLSession session(URLSessionConfiguration::ephemeral());
    Completed<TaskEnd> end;
    const auto task = session.dataTask(URLRequest(server.url()), TaskEnd::into(end));
    task->cancel();
    task->resume();
    EXPECT_EQ(end.value().code(), URLErrorCode::cancelled);
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST(URLSession, ATaskThatIsReleasedUnresumedEndsAsCancelled) {
    URLSession session(URLSessionConfiguration::ephemeral());
    Completed<TaskEnd> end;
    session.dataTask(URLRequest(*URL::parse("http://127.0.0.1:1/")), TaskEnd::into(end));
    EXPECT_EQ(end.value().code(), URLErrorCode::cancelled);
}

TEST(URLSession, AnInvalidatedSessionFinishesItsTasksAndMakesNoNewOnes) {
    TestHTTPServer server({{.body = "hello"}});
    URLSession session(URLSessionConfiguration::ephemeral());
    Completed<TaskEnd> end;
    const auto task = session.dataTask(URLRequest(server.url()), TaskEnd::into(end));
    session.finishTasksAndInvalidate();
    EXPECT_EQ(session.dataTask(URLRequest(server.url())), nullptr);
    EXPECT_EQ(session.dataTask(URLRequest(server.url()), [](auto, auto, auto) { FAIL(); }), nullptr);
    task->resume();
    EXPECT_EQ(end.value().text(), "hello");
}

} // namespace
} // namespace zelto
