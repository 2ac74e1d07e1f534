#pragma once

#include <ZeltoIntegrations/Export/AccountDataExporter.h>
#include <ZeltoIntegrations/Export/DriveExport.h>
#include <ZeltoIntegrations/Export/MessageFileExporter.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// What the exporters share that put the message as a file, and attachments, into a folder of a drive. Without
// a policy an export asks first whether the folder has files of these names: if it has, it sends nothing and
// fails with `fileAlreadyExists`, and the host repeats it on the same exporter with a policy. With a policy
// nothing is asked: `keepBoth` puts the files beside those of the same name, `overrideExisting` replaces
// those that the last check has found, if it was of the same folder.
//
// An export fails with `unsupportedFormat` before `export_` returns; with `convertError` without a PDF,
// `createBodyError` without a text, `fileAlreadyExists`, `uploadAttachmentError` for an attachment that the
// host does not have, `oauthError` without credentials and for a sign-in that is not accepted,
// `connectionError` and `internalError` for what the service refuses, and `canceled`. After a failure nothing
// more is sent; what is there already stays.
template <class User, class ListedFile>
class DriveExporter : public AccountDataExporter<User, MessageFileExporter> {
  public:
    using AccountDataExporter<User, MessageFileExporter>::AccountDataExporter;

    // Whose the account is, as it was loaded last; kept in the account.
    CachedValue<User> myUser{*this, "myUser"};

    // What the last clash check has found, in the service's order. An export with `keepBoth` empties it. Any
    // thread.
    std::vector<ListedFile> existedFiles() const {
        const std::lock_guard guard(existedLock_);
        return existed_.files;
    }

    // Which files of the folder, without one of the root, have one of these names, as the check of an export
    // finds them. It is no such check: nothing of it is kept.
    void checkFilesExists(std::vector<std::string> fileNames, std::optional<std::string> folder,
                          Completion<std::vector<ListedFile>, IntegrationLoadError> completion) {
        this->template load<Files>(std::move(completion), &DriveExporter::loadExisting, std::move(fileNames),
                                   std::move(folder));
    }

    std::optional<std::string> loadUserEmail() override {
        return myUser().transform([](const User& user) { return user.email; });
    }

  protected:
    using typename StepExporter::ExportSteps;
    using typename StepExporter::File;
    template <class R> using StepCompletion = typename StepExporter::template StepCompletion<R>;
    template <class R> using Step = typename ServiceExporter::template Step<R>;
    template <class R> using LoadCompletion = typename StepExporter::template LoadCompletion<R>;
    using Files = std::vector<ListedFile>;
    using FoundCompletion = Completion<Files, ServiceClientError>;
    using Upload = DriveUpload<ListedFile>;
    using typename NetworkExporter::Making;

    std::shared_ptr<ExportProgress> exportFiles(DriveExport files,
                                                ServiceExporter::ResultMediator<void> finish) {
        if (!this->hasBody(files.type)) {
            return this->refuseFormat(0, finish);
        }
        for (auto& attachment : files.attachments) {
            attachment.name = storedName(std::move(attachment.name));
        }
        const auto existed = existedFilesFor(files);
        const auto all = std::make_shared<const DriveExport>(std::move(files));
        const auto count = all->attachments.size();
        auto steps = this->exportSteps(FailureRule::stop, count + 3, std::move(finish));

        const auto body = steps.template add<File>(&DriveExporter::makeBody, all->type, all->title);
        const auto check = steps.template add<Files>(&DriveExporter::checkNames, all, body, existed);
        steps.template add<void>(&DriveExporter::uploadBody, all, body, check);
        for (std::size_t index = 0; index < count; ++index) {
            steps.template add<void>(&DriveExporter::uploadAttachment, all, body, check, index);
        }
        return steps.execute();
    }

    static Making making(const Upload& upload, std::string_view warning, std::string_view function) {
        auto making = NetworkExporter::uploading(upload.file, warning, function);
        making.name = upload.name;
        making.error = std::nullopt;
        return making;
    }

    // The check for the names, of which the first is the first that would be made.
    static Making checking(const std::vector<std::string>& names, std::string_view warning,
                           std::string_view function) {
        return {.kind = "file",
                .name = names.front(),
                .error = std::nullopt,
                .warning = warning,
                .function = function};
    }

  private:
    using Export = std::shared_ptr<const DriveExport>;

    // Of the service.

    // Which files of the folder have one of the names.
    virtual void findExisting(StepRun& run, const std::vector<std::string>& fileNames,
                              const std::optional<std::string>& folder, FoundCompletion done) = 0;
    // The search for the names as a part of an export.
    virtual Making checking(const std::vector<std::string>& names) const = 0;
    virtual void uploadFile(StepRun& run, const Upload& upload, StepCompletion<void> done) = 0;
    // Whether a file of that name, put into the folder, is to replace the listed one, if anything.
    virtual bool isReplaced(const ListedFile& file, const std::string& name,
                            const std::optional<std::string>& folder) const = 0;

    // The name under which a file is put there. A "/" would name a folder.
    virtual std::string storedName(std::string name) const {
        std::ranges::replace(name, '/', '_');
        return name;
    }

    // Whether a file of the one name would replace a file of the other.
    virtual bool nameSameFile(const std::string& one, const std::string& other) const { return one == other; }

    // The only data of the account.
    std::optional<User> loadedData() const override { return myUser(); }

    // Taken at the call: an export that runs beside this one finds its own.
    Files existedFilesFor(const DriveExport& files) {
        const std::lock_guard guard(existedLock_);
        if (files.policy == ExportFilePolicy::keepBoth) {
            existed_ = {};
        }
        return files.overrides() && existed_.folder == files.folder ? existed_.files : Files();
    }

    // A step: what is to be overridden.
    void checkNames(StepRun& run, const Export& files, const Step<File>& body, const Files& existed,
                    StepCompletion<Files> done) {
        if (!this->accountConfiguration().credentials) {
            return done(failure(IntegrationExportError::oauthError));
        }
        if (files->policy) {
            return done(existed);
        }
        if (run.isCancelled()) {
            return done(failure(IntegrationExportError::canceled));
        }
        const auto names = files->names(nameOf(body));
        auto take = [this, &run, files, done = std::move(done)](ExporterResult<Files> found) mutable {
            takeFound(run, *files, std::move(found), std::move(done));
        };
        findExisting(run, names, files->folder,
                     this->template preparing<Files>(run, checking(names), std::move(take)));
    }

    void loadExisting(StepRun& run, const std::vector<std::string>& fileNames,
                      const std::optional<std::string>& folder, LoadCompletion<Files> done) {
        findExisting(run, fileNames, folder,
                     [done = std::move(done)](Result<Files, ServiceClientError> found) mutable {
                         done(found ? Result<Files, IntegrationLoadError>(*std::move(found))
                                    : failure(loadError(found.error())));
                     });
    }

    void takeFound(StepRun& run, const DriveExport& files, ExporterResult<Files> found,
                   StepCompletion<Files> done) {
        if (!found) {
            return done(failure(found.error()));
        }
        const bool exist = !found->empty();
        if (!run.isCancelled()) {
            const std::lock_guard guard(existedLock_);
            existed_ = {.folder = files.folder, .files = *found};
        }
        done(exist ? failure(IntegrationExportError::fileAlreadyExists) : std::move(found));
    }

    void uploadBody(StepRun& run, const Export& files, const Step<File>& body, const Step<Files>& check,
                    StepCompletion<void> done) {
        auto upload = uploadOf(*files, *this->resultOf(body), nameOf(body), *this->resultOf(check));
        upload.isMessage = true;
        uploadFile(run, upload, std::move(done));
    }

    void uploadAttachment(StepRun& run, const Export& files, const Step<File>& body, const Step<Files>& check,
                          std::size_t index, StepCompletion<void> done) {
        this->withAttachment(run, files->attachments[index].id, IntegrationExportError::uploadAttachmentError,
                             std::move(done), &DriveExporter::uploadFetched, files, body, check, index);
    }

    void uploadFetched(StepRun& run, const File& file, const Export& files, const Step<File>& body,
                       const Step<Files>& check, std::size_t index, StepCompletion<void> done) {
        auto upload = uploadOf(*files, file, files->attachments[index].name, *this->resultOf(check));
        // What this export has just put there is not to be replaced by it.
        if (files->isTwin(index, nameOf(body)) || nameSameFile(nameOf(body), upload.name)) {
            upload.overrides = false;
            upload.existed = std::nullopt;
        }
        uploadFile(run, upload, std::move(done));
    }

    Upload uploadOf(const DriveExport& files, const File& file, std::string name,
                    const Files& existed) const {
        std::optional<ListedFile> found;
        if (files.overrides()) {
            const auto place = std::ranges::find_if(
                existed, [&](const ListedFile& each) { return isReplaced(each, name, files.folder); });
            found = place == existed.end() ? std::nullopt : std::optional(*place);
        }
        return {.file = file,
                .name = std::move(name),
                .folder = files.folder,
                .overrides = files.overrides(),
                .existed = std::move(found)};
    }

    std::string nameOf(const Step<File>& body) const {
        return storedName(ServiceExporter::resultOf(body)->filename().native());
    }

    struct Existed {
        std::optional<std::string> folder;
        Files files;
    };

    mutable std::mutex existedLock_;
    Existed existed_;
};

} // namespace zelto
