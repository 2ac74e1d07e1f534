#include <Platform/Joined.h>

#include <gtest/gtest.h>

#include <map>
#include <ranges>
#include <vector>

using namespace zelto;

TEST(Joined, HasTheSeparatorBetweenEachTwo) {
    EXPECT_EQ(joined(std::vector<std::string>{"a", "b", "c"}, ", "), "a, b, c");
    EXPECT_EQ(joined(std::vector<std::string_view>{"a"}, ", "), "a");
    EXPECT_EQ(joined(std::vector<std::string>(), ", "), "");
    EXPECT_EQ(joined(std::vector<std::string>{"", "a", ""}, ","), ",a,");
}

TEST(Joined, TakesTheTextOfAnElement) {
    const std::map<std::string, std::string> pairs{{"a", "1"}, {"b", "2"}};
    EXPECT_EQ(joined(pairs, "&", [](const auto& pair) { return pair.first + "=" + pair.second; }), "a=1&b=2");
    EXPECT_EQ(joined(pairs, " ", &std::pair<const std::string, std::string>::second), "1 2");
}

TEST(Joined, TakesAView) {
    const std::vector<int> numbers{1, 2, 3, 4};
    auto odd = numbers | std::views::filter([](int number) { return number % 2 == 1; });
    EXPECT_EQ(joined(odd, "+", [](int number) { return std::to_string(number); }), "1+3");
}
