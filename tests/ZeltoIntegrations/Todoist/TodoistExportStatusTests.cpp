#include <Support/FailingExports.h>
#include <Support/TodoistExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Error = IntegrationExportError;

constexpr auto uploadWarning = "Todoist creation attachment error: ";
constexpr auto taskWarning = "Todoist creation task error: ";

const FailingStep uploads[] = {
    {R"(filename="a.txt")", Error::uploadAttachmentError, uploadWarning, {"file a.txt"}, 0},
    {R"(filename="b.txt")", Error::uploadAttachmentError, uploadWarning, {"file a.txt", "file b.txt"}, 1},
};
const FailingStep task[] = {
    {R"("commands")", Error::createTaskError, taskWarning, {"file a.txt", "file b.txt", "task"}, 2},
};

const FailingResponse noUpload[] = {
    {"no JSON", PlayedResponse::json("<html>"), "dataParseError"},
    {"no object", PlayedResponse::json("[]"), "dataParseError"},
    {"nothing", {.status = 204}, "dataParseError"},
};
const FailingResponse noOutcome[] = {
    {"no mapping", PlayedResponse::json(R"({"sync_status":{}})"), "dataParseError"},
    {"no text", PlayedResponse::json(R"({"sync_status":{},"temp_id_mapping":{"t":5}})"), "dataParseError"},
    {"a list", PlayedResponse::json(R"({"sync_status":["ok"],"temp_id_mapping":{}})"), "dataParseError"},
    {"no UTF-8", PlayedResponse::json("{\"sync_status\":{\"\xFF\":\"ok\"},\"temp_id_mapping\":{}}"),
     "dataParseError"},
};

void attachTwo(TodoistExport& one) {
    one.attach("a.txt");
    one.attach("b.txt");
}

} // namespace

TEST(TodoistExportStatus, IsMappedAtEveryStepAndNothingIsSentBehindIt) {
    expectFailuresAt<TodoistExport, TodoistServer>(uploads, failingResponses(), attachTwo);
    expectFailuresAt<TodoistExport, TodoistServer>(task, failingResponses(), attachTwo);
}

TEST(TodoistExportStatus, OfSuccessIsNoneWithoutARecord) {
    expectFailuresAt<TodoistExport, TodoistServer>(uploads, noUpload, attachTwo);
    expectFailuresAt<TodoistExport, TodoistServer>(task, unreadableResponses(), attachTwo);
    expectFailuresAt<TodoistExport, TodoistServer>(task, noOutcome, attachTwo);
}

} // namespace zelto
