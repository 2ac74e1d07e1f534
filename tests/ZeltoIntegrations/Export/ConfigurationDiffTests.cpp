#include <ZeltoIntegrations/Export/ConfigurationDiff.h>

#include <gtest/gtest.h>

#include <optional>
#include <variant>

namespace zelto {

namespace {

using Names = std::vector<std::string>;

constexpr auto restricted = IntegrationAttachmentState::restricted;
constexpr auto allowed = IntegrationAttachmentState::allowed;
constexpr auto selected = IntegrationAttachmentState::selected;

IntegrationAttachments withStates(const std::vector<IntegrationAttachmentState>& states) {
    IntegrationAttachments attachments;
    for (const auto state : states) {
        attachments.list.push_back({std::ssize(attachments.list), "name", 1, state});
    }
    return attachments;
}

Names changed(const std::vector<IntegrationAttachmentState>& original,
              const std::vector<IntegrationAttachmentState>& user, bool selectedByDefault) {
    return ConfigurationDiff().attachments(withStates(original), withStates(user), selectedByDefault).names();
}

} // namespace

TEST(ConfigurationDiff, NamesTheFieldsThatDifferInTheirOrder) {
    const auto diff =
        ConfigurationDiff().field("a", 1, 2).field("b", 1, 1).field("c", std::string("x"), std::string("y"));
    EXPECT_EQ(diff.names(), (Names{"a", "c"}));
    EXPECT_EQ(ConfigurationDiff().names(), Names());
}

TEST(ConfigurationDiff, AttachmentsSelectedByDefaultAreComparedWithThoseAllowed) {
    EXPECT_EQ(changed({allowed, allowed, restricted}, {selected, selected, restricted}, true), Names());
    EXPECT_EQ(changed({allowed, allowed, restricted}, {selected, allowed, restricted}, true),
              Names{"attachments"});
    EXPECT_EQ(changed({selected, restricted}, {selected, restricted}, true), Names{"attachments"});
}

TEST(ConfigurationDiff, AttachmentsNotSelectedByDefaultAreComparedWithThoseSelected) {
    EXPECT_EQ(changed({allowed, allowed}, {allowed, allowed}, false), Names());
    EXPECT_EQ(changed({allowed, allowed}, {selected, allowed}, false), Names{"attachments"});
    EXPECT_EQ(changed({selected, allowed}, {selected, allowed}, false), Names());
}

TEST(ConfigurationDiff, AnotherSelectionOfTheSameSizeIsNoChange) {
    EXPECT_EQ(changed({selected, allowed}, {allowed, selected}, false), Names());
}

namespace {

struct Board {
    int place = 0;
};

struct Task {
    int project = 0;
    std::optional<int> assignee;
};

// What a choice of one of several cases looks like.
struct Choice {
    std::variant<Board, Task> value;
};

Names changedChoice(const std::optional<Choice>& original, const std::optional<Choice>& user) {
    return ConfigurationDiff()
        .casePart("place", &Board::place, original, user)
        .casePart("project", &Task::project, original, user)
        .casePart("assignee", &Task::assignee, original, user)
        .names();
}

struct LinkFields {
    int webLinkVisibility = 0;
    std::optional<int> teamId;
};

} // namespace

TEST(ConfigurationDiff, TheMembersOfAChoiceAreComparedByItsCase) {
    EXPECT_EQ(changedChoice(Choice{Board{1}}, Choice{Board{1}}), Names());
    EXPECT_EQ(changedChoice(Choice{Board{1}}, Choice{Board{2}}), Names{"place"});
    EXPECT_EQ(changedChoice(Choice{Task{1, 7}}, Choice{Task{1, 8}}), Names{"assignee"});
    EXPECT_EQ(changedChoice(Choice{Task{1, 7}}, Choice{Task{2, std::nullopt}}),
              (Names{"project", "assignee"}));
}

TEST(ConfigurationDiff, AnotherCaseOfAChoiceChangesTheMembersOfBoth) {
    EXPECT_EQ(changedChoice(Choice{Board{1}}, Choice{Task{1, std::nullopt}}), (Names{"place", "project"}));
    EXPECT_EQ(changedChoice(std::nullopt, Choice{Board{1}}), Names{"place"});
    EXPECT_EQ(changedChoice(Choice{Board{1}}, std::nullopt), Names{"place"});
    EXPECT_EQ(changedChoice(std::nullopt, std::nullopt), Names());
}

TEST(ConfigurationDiff, WebLinksAreTheirVisibilityAndTeam) {
    EXPECT_EQ(ConfigurationDiff().webLinks(LinkFields{0, 1}, LinkFields{0, 1}).names(), Names());
    EXPECT_EQ(ConfigurationDiff().webLinks(LinkFields{0, 1}, LinkFields{2, {}}).names(),
              (Names{"webLinkVisibility", "teamId"}));
}

} // namespace zelto
