#include <ZeltoIntegrations/Content/AttachmentsValidation.h>

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace zelto {

using List = std::vector<IntegrationAttachment>;

List FileSizeLimitValidationRule::validate(const List& attachments) const {
    List passing;
    std::ranges::copy_if(attachments, std::back_inserter(passing),
                         [this](const auto& attachment) { return attachment.size < fileSizeLimit; });
    return passing;
}

List TotalFilesSizeLimitValidationRule::validate(const List& attachments) const {
    std::int64_t left = totalFilesSizeLimit;
    const auto firstTooMuch = std::ranges::find_if(attachments, [&](const auto& attachment) {
        if (attachment.size > left) {
            return true;
        }
        left -= attachment.size;
        return false;
    });
    return {attachments.begin(), firstTooMuch};
}

List FileCountLimitValidationRule::validate(const List& attachments) const {
    const auto count = std::clamp<std::int64_t>(fileCountLimit, 0, std::ssize(attachments));
    return {attachments.begin(), attachments.begin() + count};
}

ServiceExporterAttachmentsValidator::ServiceExporterAttachmentsValidator(
    std::optional<std::int64_t> fileSizeLimit, std::optional<std::int64_t> fileCountLimit,
    std::optional<std::int64_t> totalFilesSizeLimit) {
    if (fileSizeLimit) {
        validationRules_.push_back(std::make_unique<FileSizeLimitValidationRule>(*fileSizeLimit));
    }
    if (totalFilesSizeLimit) {
        validationRules_.push_back(std::make_unique<TotalFilesSizeLimitValidationRule>(*totalFilesSizeLimit));
    }
    if (fileCountLimit) {
        validationRules_.push_back(std::make_unique<FileCountLimitValidationRule>(*fileCountLimit));
    }
}

IntegrationAttachments
ServiceExporterAttachmentsValidator::validate(const IntegrationAttachments& attachments) const {
    List passing = attachments.list;
    for (const auto& rule : validationRules_) {
        passing = rule->validate(passing);
    }
    std::unordered_set<std::int64_t> passed;
    for (const auto& attachment : passing) {
        passed.insert(attachment.id);
    }
    IntegrationAttachments marked = attachments;
    for (auto& attachment : marked.list) {
        attachment.state = passed.contains(attachment.id) ? IntegrationAttachmentState::allowed
                                                          : IntegrationAttachmentState::restricted;
    }
    return marked;
}

} // namespace zelto
