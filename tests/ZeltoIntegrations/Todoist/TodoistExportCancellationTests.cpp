#include <Support/CancelledExport.h>
#include <Support/Event.h>
#include <Support/TodoistExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using CancelledTodoistExport = CancelledExport<TodoistExport, TodoistServer>;

void attachTwo(TodoistExport& one) {
    one.attach("a.txt");
    one.attach("b.txt");
}

} // namespace

TEST(TodoistExportCancellation, HasTheseEvents) {
    TodoistServer service;
    const auto whole = CancelledTodoistExport(service, attachTwo).run();
    EXPECT_TRUE(*whole.result);
    EXPECT_EQ(whole.events,
              (Texts{"started", "messagePlainText", "progress", "fetchAttachment", "request", "progress",
                     "fetchAttachment", "request", "progress", "request", "progress", "progress", "analytics",
                     "storage", "storage", "storage", "storage", "completion", "ended"}));
    EXPECT_EQ(whole.made, (Texts{"file a.txt", "file b.txt", "task"}));
}

TEST(TodoistExportCancellation, AtEachEventEndsOnceAndSendsNothingMore) {
    expectOneEndAtEachCancellation<TodoistExport, TodoistServer>(attachTwo);
}

TEST(TodoistExportCancellation, DoesNotWaitForAnAttachmentThatTheHostIsFetching) {
    TodoistExport one;
    attachTwo(one);
    TodoistServer service;
    Event asked;
    Event fetched;
    one.data->onAsked = [&](const std::string& what) {
        if (what == "fetchAttachment") {
            asked.set();
            fetched.wait();
        }
    };
    Completed<TodoistExport::VoidResult> completed;
    const auto progress = one.start(completed.callback<TodoistExport::Done>());
    asked.wait();
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    fetched.set();
    const std::weak_ptr<TodoistExporter> exporter = one.exporter();
    one.releaseExporter();
    EXPECT_TRUE(isGone(exporter));
    EXPECT_EQ(service.lines(), Texts{});
}

TEST(TodoistExportCancellation, LeavesTheExportThatWaitsBehindItAlone) {
    TodoistExport one;
    attachTwo(one);
    TodoistServer service;
    const auto start = std::make_shared<Event>();
    one.data->onAsked = [start](const std::string&) { start->wait(); };
    Completed<TodoistExport::VoidResult> first;
    Completed<TodoistExport::VoidResult> second;
    const auto progress = one.start(first.callback<TodoistExport::Done>());
    one.start(second.callback<TodoistExport::Done>());
    progress->cancel();
    EXPECT_EQ(first.value().error(), Error::canceled);
    start->set();
    EXPECT_TRUE(second.value());
    EXPECT_EQ(service.made(), (Texts{"file a.txt", "file b.txt", "task"}));
}

} // namespace zelto
