#include <Platform/UUID.h>

#include <gtest/gtest.h>

#include <regex>
#include <set>

using namespace zelto;

TEST(UUID, IsOfVersion4InTheStandardTextForm) {
    const std::regex form("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    for (int count = 0; count < 1000; ++count) {
        const auto made = uuid();
        EXPECT_TRUE(std::regex_match(made, form)) << made;
    }
}

TEST(UUID, IsNeverTheSameTwice) {
    std::set<std::string> all;
    for (int count = 0; count < 20'000; ++count) {
        all.insert(uuid());
    }
    EXPECT_EQ(all.size(), 20'000u);
}
