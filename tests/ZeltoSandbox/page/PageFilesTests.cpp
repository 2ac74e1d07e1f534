#include <ZeltoSandbox/SandboxServer.h>
#include <ZeltoSandbox/SandboxService.h>
#include <ZeltoSandbox/page/PageFiles.h>

#include <Platform/ASCII.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace zelto {

TEST(PageFilesTest, EveryServiceThatShowsAStateHasAModuleOfThePage) {
    const auto server = SandboxServer::start();
    ASSERT_TRUE(server);
    const auto state = (*server)->state();
    int count = 0;
    for (const auto& row : sandbox::sandboxServices()) {
        const auto key = toASCIILower(row.name);
        const bool hasModule =
            std::ranges::count(sandboxPageFiles(), "/" + key + ".js", &PageFile::path) == 1;
        EXPECT_EQ(hasModule, state.find(key) != nullptr) << row.name;
        count += hasModule ? 1 : 0;
    }
    EXPECT_GT(count, 0);
}

} // namespace zelto
