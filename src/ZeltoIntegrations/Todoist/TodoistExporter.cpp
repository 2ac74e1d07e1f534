#include <ZeltoIntegrations/Todoist/TodoistExporter.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>
#include <ZeltoIntegrations/Todoist/TodoistAuthoriser.h>
#include <ZeltoIntegrations/Todoist/TodoistClient.h>
#include <ZeltoIntegrations/Todoist/TodoistConstants.h>

#include <utility>

namespace zelto {

namespace {

using ExportError = IntegrationExportError;

// A time without a zone, which the service takes as one of the user's day.
constexpr auto dateFormat = "yyyy-MM-dd'T'HH:mm:ss";
constexpr auto dateLocale = "en_US_POSIX";

constexpr auto taskWarning = "Todoist creation task error: ";
constexpr auto commentWarning = "Todoist creation comment error: ";
constexpr auto attachmentWarning = "Todoist creation attachment error: ";
constexpr auto taskFunction = "createTask(configuration:updateProgress:)";

} // namespace

void TodoistExporter::loadConfiguration(
    Completion<TodoistExportConfiguration, IntegrationLoadError> completion) {
    offer(*this, &TodoistExporter::offered, std::move(completion));
}

TodoistExportConfiguration TodoistExporter::offered(IntegrationAttachments attachments) const {
    const auto types = contentTypes(exportTarget());
    TodoistExportConfiguration configuration{
        .saveTo = lastExportInfo().or_else([this] { return createDefaultSaveToInfo(); }),
        .saveAs = ExportServiceHelper::saveAs(lastExportContentType(), types),
        .attachments = std::move(attachments),
        .userTitle = dataInteractor().title(),
        .supportedContentTypes = types.supported,
    };
    webLinks.offerTo(configuration);
    return configuration;
}

std::optional<TodoistSaveToInfo> TodoistExporter::createDefaultSaveToInfo() const {
    auto projects = myProjects();
    if (!projects || projects->empty()) {
        return std::nullopt;
    }
    return TodoistSaveToInfo{.project = std::move(projects->front())};
}

ServiceExporterAttachmentsValidator TodoistExporter::createAttachmentsValidator() const {
    const auto known = myUser();
    return ServiceExporterAttachmentsValidator(TodoistConstants::fileSizeLimit(known && known->isPremium),
                                               std::nullopt, std::nullopt);
}

void TodoistExporter::fetchData(StepRun& run, DataCompletion done) {
    const auto client = createTodoistClient(run, done);
    if (!client) {
        return;
    }
    client->getAllData([this, done = std::move(done)](auto loaded) mutable {
        if (!loaded) {
            return done(failure(loadError(loaded.error())));
        }
        myUser.set(loaded->user);
        myProjects.set(loaded->projects);
        done(loadedData());
    });
}

std::optional<TodoistFullData> TodoistExporter::loadedData() const {
    return dataOf(myUser(), myProjects());
}

std::optional<std::string> TodoistExporter::loadUserEmail() {
    return myUser().transform([](const auto& user) { return user.email; });
}

std::shared_ptr<ExportProgress>
TodoistExporter::export_(TodoistExportConfiguration configuration,
                         Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    const auto* row = contentTextFor(configuration.saveAs, texts);
    if (!row) {
        return refuseFormat(0, finish);
    }
    const auto selected = configuration.attachments.selected();
    auto steps = exportSteps(FailureRule::stop, selected.size() + 3, std::move(finish));

    const auto text = steps.add<std::string>(&TodoistExporter::makeText, *row,
                                             webLinkSettingsOf(configuration), ExportError::createBodyError);
    Files files;
    for (const auto& attachment : selected) {
        files.push_back(steps.add<TodoistFile>(&TodoistExporter::uploadAttachment, attachment.id));
    }
    steps.add<void>(&TodoistExporter::addTask, std::move(configuration), text, std::move(files));
    return steps.execute();
}

void TodoistExporter::uploadAttachment(StepRun& run, std::int64_t attachmentPk,
                                       StepCompletion<TodoistFile> done) {
    withAttachment(run, attachmentPk, ExportError::uploadAttachmentError, std::move(done),
                   &TodoistExporter::upload);
}

void TodoistExporter::upload(StepRun& run, const File& file, StepCompletion<TodoistFile> done) {
    const auto client = createTodoistClient(run, done);
    if (!client) {
        return;
    }
    const auto name = file.filename().native();
    client->uploadAttachment(
        name, file,
        reported<JSONValue, TodoistFile>(
            run, uploading(file, attachmentWarning, "uploadAttachment(attachmentPk:updateProgress:)"),
            std::move(done),
            [name](auto info) { return TodoistFile{.name = name, .info = *std::move(info)}; },
            [](const auto&) { return std::optional<std::string>(); }));
}

void TodoistExporter::addTask(StepRun& run, const TodoistExportConfiguration& configuration,
                              const Step<std::string>& text, const Files& files, StepCompletion<void> done) {
    const auto client = createTodoistClient(run, done);
    if (!client) {
        return;
    }
    if (!configuration.saveTo) {
        return done(failure(ExportError::createTaskError));
    }
    const auto commands = commandsOf(configuration, text, files);
    client->addTask(
        *commands,
        reported<TodoistUploadResponse, void>(
            run,
            {.kind = "task",
             .name = commands->front().name,
             .error = ExportError::createTaskError,
             .warning = taskWarning,
             .function = taskFunction},
            std::move(done),
            [&run, commands](const auto& response) { return commentsResult(run, *response, *commands); },
            [commands](const auto& response) { return response->identifierOf(commands->front()); },
            [commands](const auto& response) { return response->errorOfTask(commands->front()); }));
}

TodoistExporter::Commands TodoistExporter::commandsOf(const TodoistExportConfiguration& configuration,
                                                      const Step<std::string>& text,
                                                      const Files& files) const {
    TodoistTask task{.title = titleOr(configuration.userTitle),
                     .projectID = configuration.saveTo->project.id,
                     .text = *resultOf(text)};
    if (configuration.dueDate) {
        task.dueDate =
            platformInteractor().dateFormatter()->string(*configuration.dueDate, dateFormat, dateLocale);
    }
    for (const auto& file : files) {
        task.files.push_back(*resultOf(file));
    }
    return std::make_shared<const std::vector<TodoistCommand>>(commandsFor(std::move(task)));
}

// The task is there; what the service has not taken of its comments is missing in it.
ExporterResult<void> TodoistExporter::commentsResult(StepRun& run, const TodoistUploadResponse& response,
                                                     const std::vector<TodoistCommand>& commands) {
    ExporterResult<void> result;
    for (const auto& command : commands) {
        if (const auto words = response.errorOf(command)) {
            result = failure(ExportError::createTaskError);
            reportRefusal(run,
                          {.kind = "comment",
                           .name = command.name,
                           .error = ExportError::createTaskError,
                           .warning = commentWarning,
                           .function = taskFunction},
                          *words);
        }
    }
    return result;
}

template <class Done>
std::shared_ptr<TodoistClient> TodoistExporter::createTodoistClient(StepRun& run, Done& done) {
    return clientOf<TodoistClient, TodoistAuthoriser>(run, done);
}

} // namespace zelto
