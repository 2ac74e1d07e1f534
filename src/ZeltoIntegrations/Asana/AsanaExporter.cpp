#include <ZeltoIntegrations/Asana/AsanaExporter.h>

#include <ZeltoIntegrations/Asana/AsanaAuthoriser.h>
#include <ZeltoIntegrations/Asana/AsanaClient.h>
#include <ZeltoIntegrations/Asana/AsanaConstants.h>

#include <utility>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using ExportError = IntegrationExportError;

} // namespace

void AsanaExporter::loadConfiguration(Completion<AsanaExportConfiguration, IntegrationLoadError> completion) {
    offer(*this, &AsanaExporter::offered, std::move(completion));
}

AsanaExportConfiguration AsanaExporter::offered(IntegrationAttachments attachments) const {
    const auto types = contentTypes(exportTarget());
    return {
        .saveTo = lastExportInfo().or_else([this] { return createDefaultSaveToInfo(); }),
        .saveAs = lastExportContentType().value_or(types.default_),
        .userTitle = dataInteractor().title(),
        .userNote = std::nullopt,
        .attachments = std::move(attachments),
        .supportedContentTypes = types.supported,
    };
}

std::optional<AsanaSaveToInfo> AsanaExporter::createDefaultSaveToInfo() const {
    auto workspaces = myWorkspaces();
    if (!workspaces || workspaces->empty()) {
        return std::nullopt;
    }
    auto& first = workspaces->front();
    if (first.projects.empty() || first.users.empty()) {
        return std::nullopt;
    }
    auto project = first.projects.front();
    auto user = first.users.front();
    return AsanaSaveToInfo{
        .workspace = std::move(first), .project = std::move(project), .user = std::move(user)};
}

ServiceExporterAttachmentsValidator AsanaExporter::createAttachmentsValidator() const {
    return ServiceExporterAttachmentsValidator(AsanaConstants::attachmentSizeLimit, std::nullopt,
                                               std::nullopt);
}

IntegrationExportContentTypes AsanaExporter::contentTypes(IntegrationExportTarget) const {
    return {Type::pdf, {Type::pdf}};
}

void AsanaExporter::loadPreview(IntegrationExportContentType type,
                                Callback<std::optional<IntegrationExportPreview>> completion) {
    completion(type == Type::pdf ? std::optional(pdfPreview()) : std::nullopt);
}

void AsanaExporter::fetchData(StepRun& run, DataCompletion done) {
    const auto client = createAsanaClient(run, done);
    if (!client) {
        return;
    }
    client->getAllData([this, done = std::move(done)](auto data) mutable {
        if (!data) {
            return done(failure(loadError(data.error())));
        }
        myUser.set(data->user);
        myWorkspaces.set(data->workspaces);
        done(*std::move(data));
    });
}

std::optional<AsanaFullData> AsanaExporter::loadedData() const {
    return dataOf(myUser(), myWorkspaces());
}

std::optional<std::string> AsanaExporter::loadUserEmail() {
    return myUser().and_then([](const auto& user) { return user.email; });
}

std::shared_ptr<ExportProgress> AsanaExporter::export_(AsanaExportConfiguration configuration,
                                                       Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    const auto selected = configuration.attachments.selected();
    const auto unitCount = selected.size() + 3;
    if (configuration.saveAs != Type::pdf) {
        return refuseFormat(unitCount, finish);
    }
    auto steps = exportSteps(FailureRule::stop, unitCount, std::move(finish));

    const auto pdf =
        steps.add<File>(&AsanaExporter::makePdf, titleOr(configuration.userTitle), ExportError::convertError);
    const auto task = steps.add<TaskID>(&AsanaExporter::createAsanaTask, configuration);
    steps.add<void>(&AsanaExporter::uploadPdf, pdf, task);
    for (const auto& attachment : selected) {
        steps.add<void>(&AsanaExporter::uploadAttachment, attachment.id, task);
    }
    return steps.execute();
}

void AsanaExporter::createAsanaTask(StepRun& run, const AsanaExportConfiguration& configuration,
                                    StepCompletion<TaskID> done) {
    const auto client = createAsanaClient(run, done);
    if (!client) {
        return;
    }
    if (!configuration.saveTo) {
        return done(failure(ExportError::createTaskError));
    }
    const auto title = titleOr(configuration.userTitle);
    const auto& [workspace, project, user] = *configuration.saveTo;
    client->createTask(title, configuration.userNote, project.id, workspace.id, user.id,
                       reported<AsanaTask>(run,
                                           {.kind = "task",
                                            .name = title,
                                            .error = ExportError::createTaskError,
                                            .warning = "Asana creation task error: ",
                                            .function = "createAsanaTask(configuration:updateProgress:)"},
                                           &AsanaTask::ID, std::move(done)));
}

void AsanaExporter::uploadPdf(StepRun& run, const Step<File>& pdf, const Step<TaskID>& task,
                              StepCompletion<void> done) {
    uploadFile(run, *resultOf(pdf), *resultOf(task), std::move(done));
}

void AsanaExporter::uploadAttachment(StepRun& run, std::int64_t withPk, const Step<TaskID>& forTask,
                                     StepCompletion<void> done) {
    withAttachment(run, withPk, ExportError::internalError, std::move(done), &AsanaExporter::uploadFile,
                   *resultOf(forTask));
}

void AsanaExporter::uploadFile(StepRun& run, const File& file, const TaskID& forTaskId,
                               StepCompletion<void> done) {
    const auto client = createAsanaClient(run, done);
    if (!client) {
        return;
    }
    client->uploadFile(file, forTaskId,
                       reported(run,
                                uploading(file, "Asana creation attachment error: ",
                                          "uploadFile(fromPath:forTaskId:updateProgress:)"),
                                std::move(done)));
}

template <class Done>
std::shared_ptr<AsanaClient> AsanaExporter::createAsanaClient(StepRun& run, Done& done) {
    return clientOf<AsanaClient, AsanaAuthoriser>(run, done);
}

} // namespace zelto
