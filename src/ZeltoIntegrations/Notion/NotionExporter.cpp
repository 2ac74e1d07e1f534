#include <ZeltoIntegrations/Notion/NotionExporter.h>

#include <ZeltoIntegrations/Client/Joining.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>
#include <ZeltoIntegrations/Notion/NotionAuthoriser.h>
#include <ZeltoIntegrations/Notion/NotionClient.h>

#include <utility>

namespace zelto {

namespace {

using ExportError = IntegrationExportError;
using Source = ContentText::Source;

constexpr std::size_t stepCount = 2;

constexpr auto titleKey = "title";

notion::PageCreateRequest requestOf(const NotionDatabase& parent, std::string title,
                                    std::vector<notion::WriteBlock> children) {
    return {.parent = notion::PageParentType::database(parent.id),
            .properties = {{titleKey, {.title = {notion::RichText::of(std::move(title))}}}},
            .children = std::move(children)};
}

} // namespace

void NotionExporter::loadConfiguration(
    Completion<NotionExportConfiguration, IntegrationLoadError> completion) {
    completion(offered());
}

NotionExportConfiguration NotionExporter::offered() const {
    const auto types = contentTypes(exportTarget());
    NotionExportConfiguration configuration{
        .saveTo = lastExportInfo().or_else([this] { return createDefaultSaveToInfo(); }),
        .saveAs = ExportServiceHelper::saveAs(lastExportContentType(), types),
        .userTitle = dataInteractor().title(),
        .supportedContentTypes = types.supported,
    };
    webLinks.offerTo(configuration);
    return configuration;
}

std::optional<NotionSaveToInfo> NotionExporter::createDefaultSaveToInfo() const {
    auto known = databases();
    if (!known || known->empty()) {
        return std::nullopt;
    }
    return NotionSaveToInfo::journal(std::move(known->front()));
}

void NotionExporter::fetchData(StepRun& run, DataCompletion done) {
    const auto client = createNotionClient(run, done);
    if (!client) {
        return;
    }
    using Both = Joined<ServiceClientError, NotionUser, NotionDatabases>;
    const auto both = std::make_shared<Both>([this, done = std::move(done)](auto loaded) mutable {
        if (!loaded) {
            return done(failure(loadError(loaded.error())));
        }
        store(std::get<NotionUser>(*loaded), std::get<NotionDatabases>(*loaded));
        done(loadedData());
    });
    client->fetchMe(both->part<0>());
    client->fetchAllDatabases(both->part<1>());
}

void NotionExporter::store(const NotionUser& user, const NotionDatabases& found) {
    hasMoreDatabases_ = found.hasMore;
    me.set(user);
    databases.set(found.databases);
    users.set(std::vector<NotionUser>());
}

std::optional<NotionFullData> NotionExporter::loadedData() const {
    return dataOf(me(), databases(), std::optional(users().value_or(std::vector<NotionUser>())));
}

std::optional<std::string> NotionExporter::loadUserEmail() {
    const auto user = me();
    return user && ExportServiceHelper::isNotEmpty(user->email)  ? user->email
           : user && ExportServiceHelper::isNotEmpty(user->name) ? user->name
                                                                 : std::nullopt;
}

std::shared_ptr<ExportProgress> NotionExporter::export_(NotionExportConfiguration configuration,
                                                        Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    const auto* row = contentTextFor(configuration.saveAs, texts);
    if (!row) {
        return refuseFormat(0, finish);
    }
    auto steps = exportSteps(FailureRule::stop, stepCount, std::move(finish));
    const auto content = steps.add<Page>(&NotionExporter::makeContent, configuration, *row);
    steps.add<void>(&NotionExporter::createPage, std::move(configuration), content);
    return steps.execute();
}

void NotionExporter::makeContent(StepRun& run, const NotionExportConfiguration& configuration,
                                 const ContentText& row, StepCompletion<Page> done) {
    const auto draft =
        std::make_shared<Draft>(Draft{.title = titleOr(configuration.userTitle),
                                      .content = {.userNote = configuration.userNote},
                                      .row = row,
                                      .link = linkTypeOf(row, webLinkSettingsOf(configuration))});
    if (row.source == Source::link) {
        return addLink(run, draft, std::move(done));
    }
    dataInteractor().headerComponents([this, &run, draft, done = std::move(done)](auto header) mutable {
        draft->content.header = std::move(header);
        addBody(run, draft, std::move(done));
    });
}

void NotionExporter::addBody(StepRun& run, const DraftPointer& draft, StepCompletion<Page> done) {
    if (run.isCancelled()) {
        return done(failure(ExportError::canceled));
    }
    auto taken = [this, &run, draft, done = std::move(done)](auto components) mutable {
        draft->content.body = std::move(components);
        addLink(run, draft, std::move(done));
    };
    if (draft->row.source == Source::meetingSummary) {
        return dataInteractor().formattedMeetingSummaryComponents(std::move(taken));
    }
    dataInteractor().formattedBodyComponents(std::move(taken));
}

void NotionExporter::addLink(StepRun& run, const DraftPointer& draft, StepCompletion<Page> done) {
    if (run.isCancelled()) {
        return done(failure(ExportError::canceled));
    }
    dataInteractor().linkComponents(draft->link, [draft, done = std::move(done)](auto link) mutable {
        if (!link && draft->row.source == Source::link) {
            return done(failure(ExportError::createBodyError));
        }
        draft->content.link = std::move(link);
        done(Page{.title = std::move(draft->title), .blocks = std::move(draft->content).toWriteBlocks()});
    });
}

void NotionExporter::createPage(StepRun& run, const NotionExportConfiguration& configuration,
                                const Step<Page>& content, StepCompletion<void> done) {
    if (!configuration.saveTo) {
        return done(failure(ExportError::createTaskError));
    }
    const auto client = createNotionClient(run, done);
    if (!client) {
        return;
    }
    auto [title, blocks] = *resultOf(content);
    client->createPage(requestOf(configuration.saveTo->parent(), title, std::move(blocks.children)),
                       reported<notion::Page, void>(
                           run,
                           {.kind = "page",
                            .name = title,
                            .error = std::nullopt,
                            .warning = "Notion creation page error: ",
                            .function = "createPage(configuration:updateProgress:)",
                            .leftOutBlocks = blocks.leftOutCount},
                           std::move(done), [](const auto&) { return ExporterResult<void>(); },
                           [](const auto& page) { return std::optional(page->id.rawValue); }));
}

template <class Done>
std::shared_ptr<NotionClient> NotionExporter::createNotionClient(StepRun& run, Done& done) {
    return clientOf<NotionClient, NotionAuthoriser>(run, done);
}

} // namespace zelto
