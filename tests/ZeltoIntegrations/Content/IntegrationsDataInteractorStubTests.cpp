#include <ZeltoIntegrations/Content/IntegrationsDataInteractorStub.h>

#include <gtest/gtest.h>

namespace zelto {

TEST(IntegrationsDataInteractorStub, DescribesAnEmptyMail) {
    IntegrationsDataInteractorStub stub;
    EXPECT_EQ(stub.exportTarget(), IntegrationExportTarget::email);
    EXPECT_EQ(stub.addresses(), IntegrationsInteractorAddresses());
    EXPECT_EQ(stub.externalAddresses(), IntegrationsInteractorAddresses());
    EXPECT_EQ(stub.subject(), std::nullopt);
    EXPECT_EQ(stub.originalDate(), std::nullopt);
    EXPECT_EQ(stub.receivedDate(), std::nullopt);
    EXPECT_EQ(stub.title(), "");
    EXPECT_EQ(stub.meetTranscriptStartDate(), std::nullopt);
    EXPECT_EQ(stub.meetTranscriptEndDate(), std::nullopt);
    EXPECT_EQ(stub.meetTranscriptAttendees(), std::nullopt);
}

TEST(IntegrationsDataInteractorStub, NeverCallsACompletion) {
    IntegrationsDataInteractorStub stub;
    const auto unexpected = [](auto&&...) { ADD_FAILURE() << "a completion of the stub was called"; };
    const auto type = IntegrationLinkType::backlink(IntegrationLinkFormat::raw);
    stub.link(type, unexpected);
    stub.linkComponents(type, unexpected);
    stub.html({}, unexpected);
    stub.enml(std::string(), unexpected);
    stub.enml(IntegrationExportHtmlOptions(), unexpected);
    stub.htmlHeader(unexpected);
    stub.headerComponents(unexpected);
    stub.messagePlainText(type, unexpected);
    stub.meetTranscript(IntegrationMeetingTranscriptContent::summary,
                        IntegrationMeetingTranscriptFormat::text, type, unexpected);
    stub.availableAttachments(unexpected);
    stub.fetchAttachment(1, unexpected);
    stub.formattedBodyComponents(unexpected);
    stub.formattedMeetingSummaryComponents(unexpected);
}

} // namespace zelto
