#pragma once

#include <ZeltoIntegrations/ICloud/ICloudClient.h>
#include <ZeltoIntegrations/ICloud/ICloudExporter.h>

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

// A file as it was when it was to be put on the drive.
struct AskedUpload {
    std::string name;
    std::string content;

    bool operator==(const AskedUpload&) const = default;
};

// A client that records its calls. By default it takes every file.
class FakeICloudClient final : public ICloudClient {
  public:
    using Done = Completion<void, ICloudClientError>;

    std::function<void(Done)> onUpload = [](Done done) { done({}); };
    std::function<void()> onClose = [] {};

    void uploadFile(std::filesystem::path file, Done completion) override {
        {
            const std::lock_guard guard(lock_);
            uploads_.push_back({file.filename().native(), TemporaryFolder::read(file)});
        }
        onUpload(std::move(completion));
    }

    void cancelAllOperations() override {}

    void close() override { onClose(); }

    std::vector<AskedUpload> uploads() const {
        const std::lock_guard guard(lock_);
        return uploads_;
    }

  private:
    mutable std::mutex lock_;
    std::vector<AskedUpload> uploads_;
};

// An export of "Title" as a PDF. The host gives the files of attachments and makes PDFs.
class ICloudExport : public ServiceExport<ICloudExporter> {
  public:
    ICloudExport() : ServiceExport(ServiceAccountConfiguration(ServiceType::iCloudDrive, "me", true)) {
        configuration.userTitle = "Title";
        data->htmlText = "<p>Body</p>";
        data->fileOf = [this](std::int64_t id) { return URL::file(files.at(static_cast<std::size_t>(id))); };
        interactor->makePdf = [](const std::string& html, const std::filesystem::path& path,
                                 Callback<bool> done) {
            std::ofstream(path, std::ios::binary) << "%PDF " << html;
            done(true);
        };
    }

    // The exporter goes before what it uses.
    ~ICloudExport() { releaseExporter(); }

    // Adds a selected attachment of that content.
    void attach(std::string_view name, std::string_view content = "content") {
        IntegrationAttachment attachment{static_cast<std::int64_t>(files.size()), std::string(name),
                                         static_cast<std::int64_t>(content.size())};
        files.push_back(folder.write(name, content));
        data->attachments.list.push_back(attachment);
        attachment.state = IntegrationAttachmentState::selected;
        configuration.attachments.list.push_back(attachment);
    }

    std::shared_ptr<ExportProgress> start(Done done) {
        return exporter()->export_(configuration, client, std::move(done));
    }

    VoidResult run() {
        Completed<VoidResult> completed;
        progress = start(completed.callback<Done>());
        return completed.value();
    }

    std::shared_ptr<FakeICloudClient> client = std::make_shared<FakeICloudClient>();
    TemporaryFolder folder;
    std::vector<std::filesystem::path> files; // by attachment
};

} // namespace zelto
