#include <Platform/HTTP/URLSession.h>

#include "Support/Eventually.h"
#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <netdb.h>

#include <atomic>
#include <cstring>
#include <semaphore>

namespace {

std::atomic<int> waitingLookUps = 0;
std::counting_semaphore<> lookUps(0);

} // namespace

// Replaces the system's function in the whole test program: one name is only found when a test says so.
extern "C" int getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result) {
    static const auto system = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    if (node && std::strcmp(node, "slow.invalid") == 0) {
        ++waitingLookUps;
        EXPECT_TRUE(lookUps.try_acquire_for(zelto::maximumWait));
        --waitingLookUps;
        return EAI_NONAME;
    }
    return system(node, service, hints, result);
}

namespace zelto {
namespace {

const URL slow = *URL::parse("https://slow.invalid/");

bool areLookedUp(int count) {
    return eventually([&] { return waitingLookUps == count; });
}

TEST(URLSessionResolver, ANameThatIsLookedUpHoldsNobodyUp) {
    TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "ok"}; });
    URLSession session(URLSessionConfiguration::ephemeral());
    Completed<TaskEnd> cancelled;
    Completed<TaskEnd> notFound;
    const auto task = session.dataTask(URLRequest(slow), TaskEnd::into(cancelled));
    task->resume();
    ASSERT_TRUE(areLookedUp(1));
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text(), "ok");
    task->cancel();
    EXPECT_EQ(cancelled.value().code(), URLErrorCode::cancelled);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text(), "ok");
    URLRequest request(slow);
    request.timeout = TimeInterval(0.2);
    EXPECT_EQ(TaskEnd::of(session, request).code(), URLErrorCode::timedOut);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text(), "ok");
    session.dataTask(URLRequest(slow), TaskEnd::into(notFound))->resume();
    ASSERT_TRUE(areLookedUp(3));
    lookUps.release(3);
    EXPECT_EQ(notFound.value().code(), URLErrorCode::cannotFindHost);
    ASSERT_TRUE(areLookedUp(0));
}

} // namespace
} // namespace zelto
