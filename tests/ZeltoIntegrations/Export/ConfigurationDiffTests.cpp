#include <ZeltoIntegrations/Export/ConfigurationDiff.h>

#include <gtest/gtest.h>

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

} // namespace zelto
