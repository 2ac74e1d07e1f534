#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace zelto {

// One limit of a service. The result keeps the order of the input.
class AttachmentsValidationRule {
  public:
    virtual ~AttachmentsValidationRule() = default;

    // The attachments that pass.
    virtual std::vector<IntegrationAttachment>
    validate(const std::vector<IntegrationAttachment>& attachments) const = 0;
};

// Passes every attachment smaller than the limit, in bytes; one of exactly the limit fails.
class FileSizeLimitValidationRule final : public AttachmentsValidationRule {
  public:
    explicit FileSizeLimitValidationRule(std::int64_t fileSizeLimit) : fileSizeLimit(fileSizeLimit) {}

    std::vector<IntegrationAttachment>
    validate(const std::vector<IntegrationAttachment>& attachments) const override;

    const std::int64_t fileSizeLimit;
};

// Passes the attachments from the start while their sum is within the limit, and none after the first that
// would pass it.
class TotalFilesSizeLimitValidationRule final : public AttachmentsValidationRule {
  public:
    explicit TotalFilesSizeLimitValidationRule(std::int64_t totalFilesSizeLimit)
        : totalFilesSizeLimit(totalFilesSizeLimit) {}

    std::vector<IntegrationAttachment>
    validate(const std::vector<IntegrationAttachment>& attachments) const override;

    const std::int64_t totalFilesSizeLimit;
};

// Passes the first `fileCountLimit` attachments.
class FileCountLimitValidationRule final : public AttachmentsValidationRule {
  public:
    explicit FileCountLimitValidationRule(std::int64_t fileCountLimit) : fileCountLimit(fileCountLimit) {}

    std::vector<IntegrationAttachment>
    validate(const std::vector<IntegrationAttachment>& attachments) const override;

    const std::int64_t fileCountLimit;
};

// Marks which attachments of a mail a service would take.
class ServiceExporterAttachmentsValidator {
  public:
    // The rules in the order of size, total, count; one for each limit that is given.
    ServiceExporterAttachmentsValidator(std::optional<std::int64_t> fileSizeLimit,
                                        std::optional<std::int64_t> fileCountLimit,
                                        std::optional<std::int64_t> totalFilesSizeLimit);

    // The whole list in its order, each attachment `allowed` or `restricted` whatever its state was before.
    // Each rule narrows what the rule before it let pass.
    IntegrationAttachments validate(const IntegrationAttachments& attachments) const;

    const std::vector<std::unique_ptr<const AttachmentsValidationRule>>& validationRules() const {
        return validationRules_;
    }

  private:
    std::vector<std::unique_ptr<const AttachmentsValidationRule>> validationRules_;
};

} // namespace zelto
