#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

namespace zelto {

// Expects the condition to hold in a process of its own, where nothing has been read or created before.
template <class F> void expectInFreshProcess(F&& holds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::_Exit(holds() ? 0 : 1), ::testing::ExitedWithCode(0), "");
}

} // namespace zelto
