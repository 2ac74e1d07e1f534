#include <ZeltoIntegrations/Slack/SlackExporter.h>

#include <ZeltoIntegrations/Client/Joining.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>
#include <ZeltoIntegrations/Slack/SlackAuthoriser.h>
#include <ZeltoIntegrations/Slack/SlackClient.h>

#include <Platform/Collation.h>

#include <utility>

namespace zelto {

namespace {

using ExportError = IntegrationExportError;

constexpr std::size_t stepCount = 2;

constexpr auto afterNote = "\n\n";
constexpr auto betweenParts = "\n------------------\n\n";

// The note with its line ends is one part, the text the other.
std::string messageOf(const std::optional<std::string>& note, const std::string& text) {
    if (!ExportServiceHelper::isNotEmpty(note)) {
        return text;
    }
    return *note + afterNote + (text.empty() ? "" : betweenParts + text);
}

} // namespace

void SlackExporter::loadConfiguration(Completion<SlackExportConfiguration, IntegrationLoadError> completion) {
    completion(offered());
}

SlackExportConfiguration SlackExporter::offered() const {
    const auto types = contentTypes(exportTarget());
    SlackExportConfiguration configuration{
        .saveTo = lastExportInfo(),
        .saveAs = ExportServiceHelper::saveAs(lastExportContentType(), types),
        .userTitle = dataInteractor().title(),
        .supportedContentTypes = types.supported,
    };
    webLinks.offerTo(configuration);
    return configuration;
}

void SlackExporter::fetchData(StepRun& run, DataCompletion done) {
    const auto client = createSlackClient(run, done);
    if (!client) {
        return;
    }
    using All = Joined<ServiceClientError, SlackSelfUser, std::vector<SlackChannel>, std::vector<SlackUser>>;
    const auto all = std::make_shared<All>([this, done = std::move(done)](auto loaded) mutable {
        if (!loaded) {
            return done(failure(loadError(loaded.error())));
        }
        store({.me = std::get<0>(*std::move(loaded)),
               .channels = std::get<1>(*std::move(loaded)),
               .users = std::get<2>(*std::move(loaded))});
        done(loadedData());
    });
    client->fetchSelf(all->part<0>());
    client->fetchChannels(all->part<1>());
    client->fetchUsers(all->part<2>());
}

void SlackExporter::store(SlackFullData data) {
    me.set(data.me);
    channels.set(sortedByName(std::move(data.channels), &SlackChannel::name));
    users.set(std::move(data.users));
}

std::optional<SlackFullData> SlackExporter::loadedData() const {
    return dataOf(me(), channels(), users());
}

std::optional<std::string> SlackExporter::loadUserEmail() {
    return me().transform([](const auto& self) { return self.user + "@" + self.team; });
}

std::shared_ptr<ExportProgress> SlackExporter::export_(SlackExportConfiguration configuration,
                                                       Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    const auto* row = contentTextFor(configuration.saveAs, texts);
    if (!row) {
        return refuseFormat(0, finish);
    }
    auto steps = exportSteps(FailureRule::stop, stepCount, std::move(finish));
    const auto text = steps.add<std::string>(&SlackExporter::makeText, *row, webLinkSettingsOf(configuration),
                                             ExportError::createBodyError);
    steps.add<void>(&SlackExporter::postMessage, std::move(configuration), text);
    return steps.execute();
}

void SlackExporter::postMessage(StepRun& run, const SlackExportConfiguration& configuration,
                                const Step<std::string>& text, StepCompletion<void> done) {
    if (!configuration.saveTo) {
        return done(failure(ExportError::createTaskError));
    }
    const auto client = createSlackClient(run, done);
    if (!client) {
        return;
    }
    client->postMessage(configuration.saveTo->identifier(),
                        messageOf(configuration.userNote, *resultOf(text)),
                        reported<SlackPostMessageResponse, void>(
                            run,
                            {.kind = "message",
                             .name = titleOr(configuration.userTitle),
                             .error = std::nullopt,
                             .warning = "Slack creation message error: ",
                             .function = "postMessage(configuration:updateProgress:)"},
                            std::move(done), [](const auto&) { return ExporterResult<void>(); },
                            [](const auto& response) { return std::optional(response->ts); }));
}

template <class Done>
std::shared_ptr<SlackClient> SlackExporter::createSlackClient(StepRun& run, Done& done) {
    return clientOf<SlackClient, SlackAuthoriser>(run, done);
}

} // namespace zelto
