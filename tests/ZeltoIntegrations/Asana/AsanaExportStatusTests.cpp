#include <Support/AsanaExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Error = IntegrationExportError;

void attachTwo(AsanaExport& one) {
    one.attach("a.txt");
    one.attach("b.txt");
}

} // namespace

TEST(AsanaExportStatus, OfAnUploadIsEnoughWithAnyJSONAndWithoutABody) {
    for (const auto& body : {PlayedResponse::json("{}"), PlayedResponse::json(R"({"data":{}})", 201),
                             PlayedResponse{.status = 204}}) {
        AsanaExport one;
        attachTwo(one);
        AsanaServer service;
        service.respondTo("/attachments", body);
        EXPECT_TRUE(one.run()) << body.status << " " << body.body;
    }
}

TEST(AsanaExportStatus, OfAnUploadIsNoneWithAPageInPlaceOfJSON) {
    AsanaExport one;
    AsanaServer service;
    service.respondTo("Title.pdf", PlayedResponse::json("<html>"));
    EXPECT_EQ(one.run().error(), Error::uploadAttachmentError);
}

} // namespace zelto
