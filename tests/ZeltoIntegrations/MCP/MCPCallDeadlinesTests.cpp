#include "AllocationLimit.h"

#include <ZeltoIntegrations/MCP/MCPCallDeadlinesInternal.h>

#include <Support/Eventually.h>

#include <gtest/gtest.h>

#include <chrono>
#include <new>

namespace zelto {
namespace {

std::shared_ptr<MCPRunningCall> newCall() {
    return std::make_shared<MCPRunningCall>(std::make_shared<std::atomic<std::uint64_t>>(0));
}

// Whether there was no memory for the job that watches: of what is allocated there, the pool's list of jobs
// alone takes large pieces, one for several jobs. The deadline is taken away again.
bool failsForLackOfMemory(const std::shared_ptr<MCPRunningCall>& call) {
    const AllocationLimit limit(256);
    try {
        (void)MCPCallDeadlines::shared().add(call, std::chrono::hours(1));
        return false;
    } catch (const std::bad_alloc&) {
        return true;
    }
}

TEST(MCPCallDeadlines, AreKeptAfterOneThatNoMemoryWasLeftFor) {
    const auto refused = newCall();
    ASSERT_TRUE(eventually([&] { return failsForLackOfMemory(refused); }));
    const auto call = newCall();
    const auto deadline = MCPCallDeadlines::shared().add(call, std::chrono::milliseconds(1));
    EXPECT_TRUE(eventually([&] { return call->reasonToEnd().has_value(); }));
    EXPECT_EQ(refused->reasonToEnd(), std::nullopt);
}

} // namespace
} // namespace zelto
