#include <Support/FailingExports.h>
#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Error = IntegrationExportError;

const FailingStep steps[] = {
    {"/1/cards?", Error::createTaskError, "Trello creation card error: ", {"card"}, 0},
    {"Title.pdf",
     Error::uploadAttachmentError,
     "Trello creation attachment error: ",
     {"card", "file Title.pdf", "file a.txt"},
     2},
    {"a.txt",
     Error::uploadAttachmentError,
     "Trello creation attachment error: ",
     {"card", "file Title.pdf", "file a.txt"},
     2},
};

void attachOne(TrelloExport& one) {
    one.attach("a.txt");
}

} // namespace

TEST(TrelloExportStatus, IsMappedAtEveryStepAndToldOnce) {
    expectFailuresAt<TrelloExport, TrelloServer>(steps, failingResponses(), attachOne);
}

TEST(TrelloExportStatus, OfSuccessIsNoneWithoutARecord) {
    expectFailuresAt<TrelloExport, TrelloServer>(steps, unreadableResponses(), attachOne);
}

} // namespace zelto
