#include <Platform/Completion.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

// A completion that is dropped uncalled would stall a serial queue in the product, so it fails the test
// program.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    zelto::CallbackGuard::setDroppedHandler([] {
        std::fputs("a completion was dropped without being called\n", stderr);
        ADD_FAILURE() << "a completion was dropped without being called";
    });
    return RUN_ALL_TESTS();
}
