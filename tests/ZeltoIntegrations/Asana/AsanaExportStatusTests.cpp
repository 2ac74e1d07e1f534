#include <Support/AsanaExport.h>
#include <Support/FailingExports.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Error = IntegrationExportError;

const FailingStep steps[] = {
    {"projects=p1", Error::createTaskError, "Asana creation task error: ", {"task"}, 0},
    {"Title.pdf",
     Error::uploadAttachmentError,
     "Asana creation attachment error: ",
     {"task", "file Title.pdf"},
     1},
    {"a.txt",
     Error::uploadAttachmentError,
     "Asana creation attachment error: ",
     {"task", "file Title.pdf", "file a.txt"},
     2},
};

void attachTwo(AsanaExport& one) {
    one.attach("a.txt");
    one.attach("b.txt");
}

} // namespace

TEST(AsanaExportStatus, IsMappedAtEveryStepAndStopsTheStepsBehindIt) {
    expectFailuresAt<AsanaExport, AsanaServer>(steps, failingResponses(), attachTwo);
}

TEST(AsanaExportStatus, OfSuccessIsNoneWithoutATask) {
    expectFailuresAt<AsanaExport, AsanaServer>(std::span(steps).first(1), unreadableResponses(), attachTwo);
}

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
