#include <Platform/Collation.h>

#include "Support/FreshProcess.h"

#include <gtest/gtest.h>

#include <stdlib.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

struct Named {
    std::string name;
    int number = 0;

    bool operator==(const Named&) const = default;
};

Texts ordered(const Texts& names, const std::string& locale) {
    std::vector<Named> items;
    for (const auto& name : names) {
        items.push_back({.name = name});
    }
    Texts sorted;
    for (auto& item : sortedByName(std::move(items), &Named::name, Collation(locale))) {
        sorted.push_back(std::move(item.name));
    }
    return sorted;
}

} // namespace

TEST(Collation, IsThatOfTheLanguage) {
    const Texts names = {"Zebra", "ärger", "Apfel", "öde", "opal"};
    EXPECT_EQ(ordered(names, "de"), (Texts{"Apfel", "ärger", "öde", "opal", "Zebra"}));
    EXPECT_EQ(ordered(names, "sv_SE"), (Texts{"Apfel", "opal", "Zebra", "ärger", "öde"}));
    EXPECT_EQ(ordered({"hz", "ch", "cz", "i"}, "cs"), (Texts{"cz", "hz", "ch", "i"}));
}

TEST(Collation, DisregardsCaseAndKeepsTheOrderOfWhatIsTheSame) {
    const std::vector<Named> items = {{"b", 1}, {"General", 2}, {"general", 3}, {"B", 4}, {"GENERAL", 5}};
    EXPECT_EQ(sortedByName(items, &Named::name, Collation("en")),
              (std::vector<Named>{{"b", 1}, {"B", 4}, {"General", 2}, {"general", 3}, {"GENERAL", 5}}));
    EXPECT_EQ(Collation("en").key("ÜBER"), Collation("en").key("über"));
    EXPECT_NE(Collation("en").key("uber"), Collation("en").key("über"));
}

TEST(Collation, DisregardsCaseAlsoWhereTheLocaleHasNoLanguage) {
    for (const auto* locale : {"C", "en_US_POSIX", "", "xx_none"}) {
        EXPECT_EQ(ordered({"b", "B", "a", "Z", "É", "f"}, locale), (Texts{"a", "b", "B", "É", "f", "Z"}))
            << locale;
    }
}

TEST(Collation, IsThatOfTheEnvironmentWithoutALocale) {
    expectInFreshProcess([] {
        ::setenv("LC_ALL", "sv_SE.UTF-8", 1);
        return Collation().key("z") < Collation().key("Ä") && Collation().key("Ä") == Collation().key("ä");
    });
    expectInFreshProcess([] {
        ::setenv("LC_ALL", "de_DE.UTF-8", 1);
        return Collation().key("Ä") < Collation().key("z");
    });
    expectInFreshProcess([] {
        ::setenv("LC_ALL", "C", 1);
        return Collation().key("a") == Collation().key("A") && Collation().key("a") < Collation().key("B");
    });
}

TEST(Collation, TakesAnyText) {
    const Collation collation("en");
    EXPECT_LT(collation.key(""), collation.key("a"));
    EXPECT_LT(collation.key("a"), collation.key(std::string(100'000, 'a')));
    EXPECT_NE(collation.key("\xFF"), collation.key("a"));
    EXPECT_EQ(collation.key("cafe\u0301"), collation.key("café"));
    EXPECT_EQ(sortedByName(std::vector<Named>{}, &Named::name, collation), std::vector<Named>{});
}

} // namespace zelto
