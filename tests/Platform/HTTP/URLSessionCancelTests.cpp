#include <Platform/HTTP/URLSession.h>

#include "Support/Event.h"
#include "Support/RecordingDelegate.h"
#include "Support/ScriptedServer.h"
#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>

namespace zelto {
namespace {

constexpr std::string_view head = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n";

// Cancels a task when its server's script sets the event, and waits for the end of both.
void expectCancelledAt(URLRequest request, const std::function<void(Conversation&, Event&)>& script) {
    Event isThere;
    Event serverIsDone;
    ScriptedServer server([&](Conversation& conversation) {
        script(conversation, isThere);
        conversation.waitForEnd();
        serverIsDone.set();
    });
    request.url = server.url();
    URLSession session(URLSessionConfiguration::ephemeral());
    Completed<TaskEnd> end;
    const auto task = session.dataTask(std::move(request), TaskEnd::into(end));
    task->resume();
    isThere.wait();
    task->cancel();
    task->cancel();
    EXPECT_EQ(end.value().code(), URLErrorCode::cancelled);
    serverIsDone.wait();
}

const URL anyURL = *URL::parse("http://127.0.0.1/");

TEST(URLSessionCancel, BeforeTheHeadEndsTheConnection) {
    expectCancelledAt(URLRequest(anyURL), [](Conversation& conversation, auto& isThere) {
        conversation.readHead();
        isThere.set();
    });
}

TEST(URLSessionCancel, WithinTheHeadEndsTheConnection) {
    expectCancelledAt(URLRequest(anyURL), [](Conversation& conversation, auto& isThere) {
        conversation.readHead();
        conversation.send(head.substr(0, 20));
        isThere.set();
    });
}

TEST(URLSessionCancel, WithinALongBodyEndsTheConnection) {
    expectCancelledAt(URLRequest(anyURL), [](Conversation& conversation, auto& isThere) {
        conversation.readHead();
        conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\nhello");
        isThere.set();
    });
}

TEST(URLSessionCancel, WithinAnEndlessBodyEndsTheConnection) {
    expectCancelledAt(URLRequest(anyURL), [](Conversation& conversation, auto& isThere) {
        conversation.readHead();
        conversation.send("HTTP/1.1 200 OK\r\n\r\nhello");
        isThere.set();
        // A larger response than a session accepts would end by itself.
        const std::string piece(10'000, 'x');
        for (int sent = 0; sent < 10'000 && conversation.send(piece); ++sent) {
        }
    });
}

TEST(URLSessionCancel, WithinAnUploadEndsTheConnection) {
    URLRequest request(anyURL, "POST");
    request.body = HTTPBody(std::string(50'000'000, 'x'));
    expectCancelledAt(std::move(request), [](Conversation& conversation, auto& isThere) {
        conversation.readHead();
        conversation.read(100'000);
        isThere.set();
    });
}

TEST(URLSessionCancel, OfAStreamThatIsSilentEndsTheConnection) {
    expectCancelledAt(URLRequest(anyURL), [](Conversation& conversation, auto& isThere) {
        conversation.readHead();
        conversation.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n");
        isThere.set();
    });
}

TEST(URLSessionCancel, OfAWaitingTaskSendsNothing) {
    Event responses;
    std::atomic<int> received = 0;
    ScriptedServer server([&](Conversation& conversation) {
        while (!conversation.readHead().empty()) {
            if (++received == 1) {
                responses.wait();
            }
            conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
        }
    });
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.simultaneousTransfers = 1;
    URLSession session(configuration);
    std::vector<Completed<TaskEnd>> ends(5);
    std::vector<std::shared_ptr<URLSessionDataTask>> tasks;
    for (auto& end : ends) {
        tasks.push_back(session.dataTask(URLRequest(server.url()), TaskEnd::into(end)));
        tasks.back()->resume();
    }
    for (const int cancelled : {1, 3}) {
        tasks[cancelled]->cancel();
        EXPECT_EQ(ends[cancelled].value().code(), URLErrorCode::cancelled);
    }
    responses.set();
    for (const int finished : {0, 2, 4}) {
        EXPECT_EQ(ends[finished].value().text(), "ok");
    }
    EXPECT_EQ(received, 3);
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST(URLSessionCancel, AfterTheEndHasNoEffect) {
    TestHTTPServer server({{.body = "ok"}});
    URLSession session(URLSessionConfiguration::ephemeral());
    Completed<TaskEnd> end;
    const auto task = session.dataTask(URLRequest(server.url()), TaskEnd::into(end));
    task->resume();
    EXPECT_EQ(end.value().text(), "ok");
    task->cancel();
    task->resume();
}

// The remaining response comes after the task was cancelled. Whether a later request uses the connection
// again, rather than that the connection is closed.
bool keepsConnection(std::string_view first, std::string_view rest) {
    Event isCancelled;
    std::atomic<bool> isClosed = false;
    ScriptedServer server([&](Conversation& conversation) {
        if (conversation.number() == 0) {
            conversation.readHead();
            conversation.send(first);
            isCancelled.wait();
            conversation.send(rest);
        }
        if (!conversation.readHead().empty()) {
            conversation.send("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" +
                              std::to_string(conversation.number()));
        } else if (conversation.number() == 0) {
            isClosed = true;
        }
    });
    const auto delegate = std::make_shared<RecordingDelegate>();
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    delegate->onData = [](URLSessionDataTask& task, auto) { task.cancel(); };
    session.dataTask(URLRequest(server.url()))->resume();
    EXPECT_EQ(delegate->eventsAfter(1).back(), "1 end cancelled");
    isCancelled.set();
    // Until the remaining response has been read, requests take new connections.
    bool isKept = false;
    EXPECT_TRUE(eventually([&] {
        isKept = TaskEnd::of(session, URLRequest(server.url())).text() == "0";
        return isKept || isClosed;
    }));
    return isKept;
}

// The remaining response is waited for during a second only, which a busy machine may exceed.
bool keepsConnectionInTime(std::string_view first, std::string_view rest) {
    for (int attempt = 0; attempt < 5; ++attempt) {
        if (keepsConnection(first, rest)) {
            return true;
        }
    }
    return false;
}

TEST(URLSessionCancel, WhenLittleIsLeftKeepsTheConnection) {
    EXPECT_TRUE(keepsConnectionInTime("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhello", "world"));
}

TEST(URLSessionCancel, WhenOnlyTheLastChunkIsLeftKeepsTheConnection) {
    EXPECT_TRUE(keepsConnectionInTime("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n",
                                      "0\r\n\r\n"));
}

TEST(URLSessionCancel, AtAnyMomentEndsEachTaskOnce) {
    TestHTTPServer server([](const ReceivedRequest& request) {
        return PlayedResponse{.body = std::string(request.target.size() * 1000, 'x')};
    });
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.simultaneousTransfers = 8;
    constexpr int count = 500;
    std::atomic<int> ends = 0;
    Event isOver;
    {
        URLSession session(configuration);
        std::minstd_rand random(1);
        std::vector<std::shared_ptr<URLSessionDataTask>> tasks;
        for (int number = 0; number < count; ++number) {
            URLRequest request(server.url("/" + std::string(random() % 100, 'a')), "PUT");
            request.body = HTTPBody(std::string(random() % 200'000, 'b'));
            tasks.push_back(session.dataTask(std::move(request), [&](auto data, auto, auto error) {
                EXPECT_NE(data.has_value(), error.has_value());
                EXPECT_TRUE(!error || error->code == URLErrorCode::cancelled) << error->message;
                if (++ends == count) {
                    isOver.set();
                }
            }));
            tasks.back()->resume();
            if (random() % 2 == 0) {
                tasks[random() % tasks.size()]->cancel();
            }
        }
        for (const auto& task : tasks) {
            if (random() % 2 == 0) {
                task->cancel();
            }
        }
    }
    isOver.wait();
    EXPECT_EQ(ends, count);
}

} // namespace
} // namespace zelto
