#pragma once

#include <ZeltoIntegrations/Evernote/EvernoteClient.h>
#include <ZeltoIntegrations/Evernote/EvernoteExporter.h>

#include <Support/ServiceExport.h>
#include <Support/TemporaryFolder.h>

#include <cstdint>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zelto {

// What a note was to be made of.
struct AskedNote {
    std::string title;
    std::string content;
    EvernoteNotebook notebook;
    std::vector<EvernoteTag> tags;
    std::vector<EvernoteAttachment> attachments;
    std::string sourceUrl;

    bool operator==(const AskedNote&) const = default;
};

// A client that records its calls. By default it has the data set here and makes every note.
class FakeEvernoteClient final : public EvernoteClient {
  public:
    using DataDone = Completion<EvernoteData, EvernoteClientError>;
    using NoteDone = Completion<void, EvernoteClientError>;

    EvernoteData account{.user = {.username = "me", .premium = false},
                         .notebooks = {{"n1", "Inbox"}, {"n2", "Work"}},
                         .tags = {{"t1", "mail"}}};
    std::function<void(DataDone)> onFetch = [this](DataDone done) { done(account); };
    std::function<void(NoteDone)> onNote = [](NoteDone done) { done({}); };
    std::function<void()> onCancel = [] {};

    void fetchData(DataDone completion) override {
        {
            const std::lock_guard guard(lock_);
            ++fetches_;
        }
        onFetch(std::move(completion));
    }

    void createNote(std::string title, std::string content, EvernoteNotebook notebook,
                    std::vector<EvernoteTag> tags, std::vector<EvernoteAttachment> attachments,
                    std::string sourceUrl, NoteDone completion) override {
        {
            const std::lock_guard guard(lock_);
            notes_.push_back({std::move(title), std::move(content), std::move(notebook), std::move(tags),
                              std::move(attachments), std::move(sourceUrl)});
        }
        onNote(std::move(completion));
    }

    void cancelAllOperations() override { onCancel(); }

    int fetches() const {
        const std::lock_guard guard(lock_);
        return fetches_;
    }

    std::vector<AskedNote> notes() const {
        const std::lock_guard guard(lock_);
        return notes_;
    }

  private:
    mutable std::mutex lock_;
    int fetches_ = 0;
    std::vector<AskedNote> notes_;
};

// An export of "Title" with its text into the notebook "Work". The host gives the files of attachments and
// makes PDFs.
class EvernoteExport : public ServiceExport<EvernoteExporter> {
  public:
    using LoadResult = Result<std::optional<EvernoteData>, IntegrationLoadError>;

    EvernoteExport() : ServiceExport(ServiceAccountConfiguration(ServiceType::Evernote, "me", true)) {
        configuration.saveTo = EvernoteNotebook{"n2", "Work"};
        configuration.userTitle = "Title";
        data->linkText = "<a href=\"mid:1\">Mail</a>";
        data->rawLinkText = "mid:1";
        data->htmlText = "<p>Body</p>";
        data->summaryHTML = "<p>Summary</p>";
        data->enmlContent = IntegrationsInteractorEnml{"<en-note>Body</en-note>", {}};
        data->fileOf = [this](std::int64_t id) { return URL::file(files.at(static_cast<std::size_t>(id))); };
        interactor->clientOfEvernote = [weakly = std::weak_ptr(client)](const auto&) {
            return weakly.lock();
        };
        interactor->makePdf = [](const std::string& html, const std::filesystem::path& path,
                                 Callback<bool> done) {
            std::ofstream(path, std::ios::binary) << "%PDF " << html;
            done(true);
        };
    }

    // The exporter goes before what it uses.
    ~EvernoteExport() { releaseExporter(); }

    // Adds a selected attachment of that content.
    void attach(std::string_view name, std::string_view content = "content") {
        IntegrationAttachment attachment{static_cast<std::int64_t>(files.size()), std::string(name),
                                         static_cast<std::int64_t>(content.size())};
        files.push_back(folder.write(name, content));
        data->attachments.list.push_back(attachment);
        attachment.state = IntegrationAttachmentState::selected;
        configuration.attachments.list.push_back(attachment);
    }

    LoadResult load(bool force) {
        Completed<LoadResult> completed;
        exporter()->loadData(force, completed.callback<Callback<LoadResult>>());
        return completed.value();
    }

    Result<void, IntegrationLoadError> fetch() {
        Completed<Result<void, IntegrationLoadError>> completed;
        exporter()->fetchServiceData(completed.callback<Completion<void, IntegrationLoadError>>());
        return completed.value();
    }

    std::shared_ptr<FakeEvernoteClient> client = std::make_shared<FakeEvernoteClient>();
    TemporaryFolder folder;
    std::vector<std::filesystem::path> files; // by attachment
};

} // namespace zelto
