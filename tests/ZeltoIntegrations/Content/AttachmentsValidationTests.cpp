#include <ZeltoIntegrations/Content/AttachmentsValidation.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

constexpr auto restricted = IntegrationAttachmentState::restricted;
constexpr auto allowed = IntegrationAttachmentState::allowed;
constexpr auto selected = IntegrationAttachmentState::selected;

// Attachments of these sizes, with ids from 1.
IntegrationAttachments ofSizes(const std::vector<std::int64_t>& sizes) {
    IntegrationAttachments attachments;
    for (const auto size : sizes) {
        const auto id = std::ssize(attachments.list) + 1;
        attachments.list.push_back({id, "file" + std::to_string(id), size});
    }
    return attachments;
}

std::vector<IntegrationAttachmentState> statesOf(const IntegrationAttachments& attachments) {
    std::vector<IntegrationAttachmentState> states;
    for (const auto& attachment : attachments.list) {
        states.push_back(attachment.state);
    }
    return states;
}

using States = std::vector<IntegrationAttachmentState>;

} // namespace

TEST(AttachmentsValidation, AFileOfExactlyTheLimitIsRestrictedAndASmallerOnePasses) {
    const ServiceExporterAttachmentsValidator validator(10, std::nullopt, std::nullopt);
    EXPECT_EQ(statesOf(validator.validate(ofSizes({10, 9}))), (States{restricted, allowed}));
}

TEST(AttachmentsValidation, ABigFileInTheMiddleDoesNotStopALaterSmallOne) {
    const ServiceExporterAttachmentsValidator validator(10, std::nullopt, std::nullopt);
    EXPECT_EQ(statesOf(validator.validate(ofSizes({1, 99, 2}))), (States{allowed, restricted, allowed}));
}

TEST(AttachmentsValidation, TheTotalKeepsAPrefixThoughALaterSmallFileWouldFit) {
    const ServiceExporterAttachmentsValidator validator(std::nullopt, std::nullopt, 100);
    EXPECT_EQ(statesOf(validator.validate(ofSizes({60, 50, 10}))), (States{allowed, restricted, restricted}));
    EXPECT_EQ(statesOf(validator.validate(ofSizes({60, 40, 1}))), (States{allowed, allowed, restricted}));
}

TEST(AttachmentsValidation, SizesThatOverflowASumAreRestricted) {
    const ServiceExporterAttachmentsValidator validator(std::nullopt, std::nullopt, 100);
    constexpr auto huge = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(statesOf(validator.validate(ofSizes({100, huge, huge}))),
              (States{allowed, restricted, restricted}));
}

TEST(AttachmentsValidation, ACountOfZeroRestrictsAll) {
    EXPECT_TRUE(FileCountLimitValidationRule(0).validate(ofSizes({1, 2}).list).empty());
    const ServiceExporterAttachmentsValidator validator(std::nullopt, 0, std::nullopt);
    EXPECT_EQ(statesOf(validator.validate(ofSizes({1, 2}))), (States{restricted, restricted}));
}

TEST(AttachmentsValidation, TheCountKeepsTheFirst) {
    const ServiceExporterAttachmentsValidator validator(std::nullopt, 2, std::nullopt);
    EXPECT_EQ(statesOf(validator.validate(ofSizes({1, 2, 3}))), (States{allowed, allowed, restricted}));
    EXPECT_EQ(statesOf(validator.validate(ofSizes({1}))), (States{allowed}));
}

TEST(AttachmentsValidation, WithoutLimitsAnEmptyListStaysEmptyAndAllElseIsAllowed) {
    const ServiceExporterAttachmentsValidator validator(std::nullopt, std::nullopt, std::nullopt);
    EXPECT_TRUE(validator.validationRules().empty());
    EXPECT_TRUE(validator.validate({}).list.empty());
    EXPECT_EQ(statesOf(validator.validate(ofSizes({1, 2}))), (States{allowed, allowed}));
}

TEST(AttachmentsValidation, ASelectedAttachmentThatPassesComesOutAllowed) {
    auto attachments = ofSizes({1});
    attachments.list[0].state = selected;
    const ServiceExporterAttachmentsValidator validator(10, std::nullopt, std::nullopt);
    EXPECT_EQ(statesOf(validator.validate(attachments)), (States{allowed}));
}

TEST(AttachmentsValidation, TwoAttachmentsWithOneIdAreAllowedIfOnePasses) {
    auto attachments = ofSizes({99, 1});
    attachments.list[1].id = attachments.list[0].id;
    const ServiceExporterAttachmentsValidator validator(10, std::nullopt, std::nullopt);
    EXPECT_EQ(statesOf(validator.validate(attachments)), (States{allowed, allowed}));
}

TEST(AttachmentsValidation, RulesNarrowOneListInTheOrderSizeTotalCount) {
    const ServiceExporterAttachmentsValidator validator(50, 2, 60);
    const auto& rules = validator.validationRules();
    ASSERT_EQ(rules.size(), 3u);
    EXPECT_NE(dynamic_cast<const FileSizeLimitValidationRule*>(rules[0].get()), nullptr);
    EXPECT_NE(dynamic_cast<const TotalFilesSizeLimitValidationRule*>(rules[1].get()), nullptr);
    EXPECT_NE(dynamic_cast<const FileCountLimitValidationRule*>(rules[2].get()), nullptr);
    // The 99 does not count towards the total, since the size rule has dropped it.
    EXPECT_EQ(statesOf(validator.validate(ofSizes({99, 20, 20, 20}))),
              (States{restricted, allowed, allowed, restricted}));
}

TEST(AttachmentsValidation, TheWholeListComesBackInItsOrder) {
    const ServiceExporterAttachmentsValidator validator(2, std::nullopt, std::nullopt);
    const auto validated = validator.validate(ofSizes({3, 1, 2}));
    EXPECT_EQ(validated, ofSizes({3, 1, 2}));
    EXPECT_EQ(validated.list[0].name, "file1");
}

TEST(IntegrationAttachments, ViewsGiveTheirStateInListOrder) {
    auto attachments = ofSizes({1, 2, 3, 4});
    attachments.list[1].state = selected;
    attachments.list[2].state = allowed;
    attachments.list[3].state = selected;
    ASSERT_EQ(attachments.selected().size(), 2u);
    EXPECT_EQ(attachments.selected()[0].id, 2);
    EXPECT_EQ(attachments.selected()[1].id, 4);
    EXPECT_EQ(attachments.allowed().size(), 1u);
    EXPECT_EQ(attachments.restricted().size(), 1u);
}

TEST(IntegrationAttachments, AttachmentsAreEqualByTheirId) {
    EXPECT_EQ((IntegrationAttachment{1, "a", 1, allowed}), (IntegrationAttachment{1, "b", 2, selected}));
    EXPECT_FALSE((IntegrationAttachment{1, "a", 1}) == (IntegrationAttachment{2, "a", 1}));
}

TEST(IntegrationAttachments, StartsRestricted) {
    EXPECT_EQ((IntegrationAttachment{1, "a", 1}).state, restricted);
}

TEST(IntegrationAttachments, JSONReadsBackUnchanged) {
    auto attachments = ofSizes({5});
    attachments.list[0].state = selected;
    const auto text = JSONEncoder().encode(attachments).value();
    EXPECT_EQ(text, R"({"list":[{"id":1,"name":"file1","size":5,"state":2}]})");
    const auto back = JSONDecoder().decode<IntegrationAttachments>(text).value();
    EXPECT_EQ(back.list.at(0).state, selected);
    EXPECT_EQ(back.list.at(0).size, 5);
    EXPECT_FALSE(
        JSONDecoder().decode<IntegrationAttachments>(R"({"list":[{"id":1,"name":"a","size":5,"state":3}]})"));
}

} // namespace zelto
