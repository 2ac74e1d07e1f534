#pragma once

#include <zelto/PassedLimits.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zelto {

// The limit of a file's size for one kind of account.
template <class Exporter> struct FileLimit {
    std::function<void(Exporter&)> useAccount;
    std::uint64_t bytes = 0;
};

// The size of a file up to which a dry run says nothing, for facts that have
//
//     using Adapter;                                            // of the service
//     using Export;                                             // an export to it
//     static constexpr auto uploadURL;
//     static std::vector<FileLimit<Exporter>> fileLimits();
template <class Facts> class FileLimits : public testing::Test {
  protected:
    std::vector<std::string> passed(std::uint64_t size) {
        return passedLimits<typename Facts::Adapter>(
            one, {{.method = "POST",
                   .url = Facts::uploadURL,
                   .parts = {{.name = "file", .fileName = "a.bin", .size = size}}}});
    }

    typename Facts::Export one;
};

TYPED_TEST_SUITE_P(FileLimits);

TYPED_TEST_P(FileLimits, AreNamedOnceTheyArePassed) {
    for (const auto& [useAccount, bytes] : TypeParam::fileLimits()) {
        useAccount(*this->one.exporter());
        EXPECT_EQ(this->passed(bytes - 1), std::vector<std::string>());
        EXPECT_EQ(this->passed(bytes), std::vector<std::string>());
        EXPECT_EQ(this->passed(bytes + 1),
                  std::vector<std::string>{"the file \"a.bin\": " + std::to_string(bytes + 1) + " of " +
                                           std::to_string(bytes) + " bytes"});
    }
}

REGISTER_TYPED_TEST_SUITE_P(FileLimits, AreNamedOnceTheyArePassed);

} // namespace zelto
