#pragma once

#include <ZeltoIntegrations/Export/TextExporter.h>
#include <ZeltoIntegrations/Notion/NotionExportConfiguration.h>
#include <ZeltoIntegrations/Notion/NotionPageContent.h>
#include <ZeltoIntegrations/Notion/NotionRecords.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class NotionClient;
struct NotionDatabases;

// Makes a page of a database: a note of the user, the message's header and body, and a link to it; or the
// note and the link alone. The service gets the text of a link and its address apart. The report says how
// many blocks at its end a long message has lost.
class NotionExporter final
    : public TextExporter<NotionFullData, ContentText::Link::backlink, IntegrationLinkFormat::raw> {
  public:
    using TextExporter::TextExporter;

    using Configuration = NotionExportConfiguration;

    // What was loaded last, and where the last page went; kept in the account.
    CachedValue<NotionSaveToInfo> lastExportInfo{*this, "lastExportInfo"};
    CachedValue<NotionUser> me{*this, "me"};
    CachedValue<std::vector<NotionDatabase>> databases{*this, "databases"};
    CachedValue<std::vector<NotionUser>> users{*this, "users"};

    // Whether the service had more databases than it gave when this exporter loaded them last. Any thread.
    bool hasMoreDatabases() const { return hasMoreDatabases_; }

    // A stored target is offered as it stands, whether or not its database is still there; without one the
    // first database.
    void loadConfiguration(Completion<NotionExportConfiguration, IntegrationLoadError> completion);

    // Fails with `unsupportedFormat` before it returns; with `createBodyError` if there should be a link
    // alone and the host has none, `createTaskError` without a target, `oauthError` without credentials, and
    // `canceled`. When the service does not take the page: `oauthError` for its sign-in, `connectionError`
    // when it was not reached, else `internalError`.
    std::shared_ptr<ExportProgress> export_(NotionExportConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);

    // The e-mail of the signed-in user; the name where the service does not give the e-mail away.
    std::optional<std::string> loadUserEmail() override;

  private:
    // What a page is made of.
    struct Page {
        std::string title;
        NotionPageBlocks blocks;
    };

    // A page while the host is asked for its parts.
    struct Draft {
        std::string title;
        NotionPageContent content;
        ContentText row;
        IntegrationLinkType link;
    };

    using DraftPointer = std::shared_ptr<Draft>;

    NotionExportConfiguration offered() const;
    std::optional<NotionSaveToInfo> createDefaultSaveToInfo() const;

    void fetchData(StepRun& run, DataCompletion done) override;
    std::optional<NotionFullData> loadedData() const override;

    bool loadsWhatIsMissing() const override { return true; }

    void store(const NotionUser& user, const NotionDatabases& found);

    void makeContent(StepRun& run, const NotionExportConfiguration& configuration, const ContentText& row,
                     StepCompletion<Page> done);
    void addBody(StepRun& run, const DraftPointer& draft, StepCompletion<Page> done);
    void addLink(StepRun& run, const DraftPointer& draft, StepCompletion<Page> done);
    void createPage(StepRun& run, const NotionExportConfiguration& configuration, const Step<Page>& content,
                    StepCompletion<void> done);
    template <class Done> std::shared_ptr<NotionClient> createNotionClient(StepRun& run, Done& done);

    std::atomic<bool> hasMoreDatabases_ = false;
};

} // namespace zelto
