#pragma once

#include <Platform/HTTP/URLSessionConfiguration.h>
#include <ZeltoIntegrations/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Trello/TrelloExporter.h>

#include <Support/Completed.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>
#include <Support/MemoryKeyChain.h>
#include <Support/TemporaryFolder.h>
#include <Support/TestHTTPServer.h>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <regex>
#include <string>
#include <vector>

namespace zelto {

// A value that is replaced at any time, also while another thread uses it.
template <class T> class Replaceable {
  public:
    explicit Replaceable(T value = {}) { *this = std::move(value); }

    Replaceable& operator=(T value) {
        const std::lock_guard guard(lock_);
        value_ = std::make_shared<const T>(std::move(value));
        return *this;
    }

    std::shared_ptr<const T> get() const {
        const std::lock_guard guard(lock_);
        return value_;
    }

  private:
    mutable std::mutex lock_;
    std::shared_ptr<const T> value_;
};

// A stand-in of Trello to which every request goes while it lives.
class TrelloServer {
  public:
    // Nothing for the answer that the service would give.
    using Handler = std::function<std::optional<PlayedAnswer>(const ReceivedRequest&)>;

    explicit TrelloServer(std::uint64_t largestKeptBody = std::uint64_t{64} << 20)
        : server([this](const ReceivedRequest& request) { return answer(request); }, largestKeptBody) {
        URLSessionConfiguration::setDefaults({.route = server.url()});
    }

    ~TrelloServer() { URLSessionConfiguration::setDefaults({}); }

    TrelloServer(const TrelloServer&) = delete;
    TrelloServer& operator=(const TrelloServer&) = delete;

    // "POST /1/cards?…", in order.
    std::vector<std::string> lines() const {
        std::vector<std::string> lines;
        for (const auto& request : server.requests()) {
            lines.push_back(request.method + " " + request.target);
        }
        return lines;
    }

    // "card", "file a.pdf", … for each request that makes something.
    std::vector<std::string> made() const {
        std::vector<std::string> made;
        for (const auto& request : server.requests()) {
            std::smatch name;
            if (request.target.starts_with("/1/cards?")) {
                made.push_back("card");
            } else if (std::regex_search(request.body, name, std::regex("filename=\"([^\"]*)\""))) {
                made.push_back("file " + name.str(1));
            } else {
                made.push_back(request.target);
            }
        }
        return made;
    }

    // The text of each request, with "B" for the boundary.
    std::vector<std::string> texts() const {
        auto texts = server.texts();
        for (auto& text : texts) {
            text = std::regex_replace(text, std::regex("Boundary-[0-9A-Fa-f-]{36}"), "B");
        }
        return texts;
    }

    Replaceable<Handler> onRequest;
    Replaceable<std::string> user{R"({"email":"me@example.org","fullName":"Me","avatarUrl":null,)"
                                  R"("idEnterprise":null,"idPremOrgsAdmin":[],"products":[]})"};
    Replaceable<std::string> boards{
        R"([{"id":"b1","name":"Work","closed":false,"pinned":true,)"
        R"("lists":[{"id":"l1","idBoard":"b1","name":"To Do","closed":false}]}])"};

  private:
    PlayedAnswer answer(const ReceivedRequest& request) {
        if (const auto handler = onRequest.get(); *handler) {
            if (auto own = (*handler)(request)) {
                return *std::move(own);
            }
        }
        if (request.target.starts_with("/1/members/me?")) {
            return PlayedAnswer::json(*user.get());
        }
        if (request.target.starts_with("/1/members/me/boards?")) {
            return PlayedAnswer::json(*boards.get());
        }
        return PlayedAnswer::json(request.target.starts_with("/1/cards?") ? R"({"id":"c1"})"
                                                                          : R"({"id":"a1"})");
    }

  public:
    TestHTTPServer server; // last: no request comes before the rest is there, or after it is gone
};

// Exports to a Trello account with a token and fakes around it, each run from call to completion. The account
// is kept from run to run.
class TrelloExport {
  public:
    using VoidResult = ExporterResult<void>;
    using Done = Completion<void, IntegrationExportError>;

    TrelloExport() {
        account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
        auto secrets = *account.credentials;
        secrets.accessToken = "token";
        ServiceCredentialsManager::store(secrets);
        data->linkText = "[mail](zelto://m)";
        data->htmlText = "<p>Body</p>";
        data->fileOf = [this](std::int64_t id) { return URL::file(files.at(static_cast<std::size_t>(id))); };
        interactor->makePdf = [this](const std::string& html, const std::filesystem::path& path,
                                     Callback<bool> done) {
            pdfPaths.push_back(path);
            std::ofstream(path, std::ios::binary) << "%PDF " << html;
            done(true);
        };
        configuration.saveTo = TrelloSaveToInfo{
            .board = {.id = "b1", .name = "Work", .lists = {{.id = "l1", .idBoard = "b1", .name = "To Do"}}},
            .list = {.id = "l1", .idBoard = "b1", .name = "To Do"}};
        configuration.userTitle = "Title";
        configuration.supportedContentTypes = {IntegrationExportContentType::pdf,
                                               IntegrationExportContentType::backLink};
    }

    // Adds a selected attachment of that content.
    void attach(std::string_view name, std::string_view content = "content") {
        attachFile(folder.write(name, content));
    }

    void attachFile(const std::filesystem::path& file) {
        IntegrationAttachment attachment{static_cast<std::int64_t>(files.size()), file.filename().string(),
                                         static_cast<std::int64_t>(std::filesystem::file_size(file))};
        data->attachments.list.push_back(attachment);
        attachment.state = IntegrationAttachmentState::selected;
        configuration.attachments.list.push_back(attachment);
        files.push_back(file);
    }

    std::shared_ptr<TrelloExporter> exporter() {
        if (!exporter_) {
            exporter_ = std::make_shared<TrelloExporter>(account, storage, interactor, data, "test", true);
        }
        return exporter_;
    }

    // The next one is made anew, with the account as it is set then.
    void releaseExporter() { exporter_ = nullptr; }

    std::shared_ptr<ExportProgress> start(Done done) {
        return exporter()->export_(configuration, std::move(done));
    }

    VoidResult run() {
        Completed<VoidResult> completed;
        progress = start(completed.callback<Done>());
        return completed.value();
    }

    TrelloExportConfiguration offered() {
        Completed<Result<TrelloExportConfiguration, IntegrationLoadError>> completed;
        exporter()->loadConfiguration(
            completed.callback<Completion<TrelloExportConfiguration, IntegrationLoadError>>());
        return completed.value().value();
    }

    using Loaded = Result<std::optional<TrelloFullData>, IntegrationLoadError>;

    Loaded load(bool force) {
        Completed<Loaded> completed;
        exporter()->loadData(force, completed.callback<Callback<Loaded>>());
        return completed.value();
    }

    MemoryKeyChain keyChain;
    TemporaryFolder folder;
    ServiceAccountConfiguration account{ServiceType::Trello, "me@example.org", true};
    TrelloExportConfiguration configuration;
    std::vector<std::filesystem::path> files;    // by attachment
    std::vector<std::filesystem::path> pdfPaths; // that were made
    std::shared_ptr<FakeDataInteractor> data = std::make_shared<FakeDataInteractor>();
    std::shared_ptr<FakePlatformInteractor> interactor = std::make_shared<FakePlatformInteractor>();
    std::shared_ptr<FakeStorage> storage = std::make_shared<FakeStorage>();
    std::shared_ptr<ExportProgress> progress;

  private:
    std::shared_ptr<TrelloExporter> exporter_;
};

} // namespace zelto
