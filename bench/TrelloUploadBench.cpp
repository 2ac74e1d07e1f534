#include "UploadCost.h"

#include <Platform/HTTP/URLSessionConfiguration.h>
#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>
#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Trello/TrelloExporter.h>

#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>

#include <future>

// Exports a message with one large attachment to Trello, compared with `curl -F` of the same file to the same
// local server: time, CPU time and peak memory of the sending process. Arguments: the size in MiB (100), the
// rounds (5).

namespace {

using namespace zelto;

// The process that exports; reports its memory before it begins.
int exportFile(const std::string& server, const std::string& file) {
    URLSessionConfiguration::setDefaults({.route = URL::parse(server)});
    LVXKeyChainStoreFactory::setStore(std::make_shared<MemoryKeyChainStore>());
    ServiceAccountConfiguration account(ServiceType::Trello, "me@example.org", true);
    account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
    account.credentials->accessToken = "token";

    const auto data = std::make_shared<FakeDataInteractor>();
    data->fileOf = [&](std::int64_t) { return URL::file(file); };
    const auto exporter =
        std::make_shared<TrelloExporter>(account, std::make_shared<FakeStorage>(),
                                         std::make_shared<FakePlatformInteractor>(), data, "bench", true);
    TrelloExportConfiguration configuration;
    configuration.saveAs = IntegrationExportContentType::backLink;
    configuration.saveTo = TrelloSaveToInfo{.board = {.id = "b"}, .list = {.id = "l"}};
    configuration.attachments.list = {{1, "file", 1, IntegrationAttachmentState::selected}};
    std::printf("%f\n", mebibytesOf("VmRSS", "self"));
    std::fflush(stdout);

    std::promise<ExporterResult<void>> exported;
    exporter->export_(configuration, [&](auto result) { exported.set_value(result); });
    return exported.get_future().get() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 3 && arguments[0] == "--export") {
        return exportFile(arguments[1], arguments[2]);
    }
    const auto size = arguments.empty() ? 100 : std::stoll(arguments[0]);
    const auto rounds = arguments.size() < 2 ? 5 : std::stoi(arguments[1]);
    const SparseFile sparse(size);
    const auto& file = sparse.path;
    const ServerProcess server;
    std::printf("A file of %lld MiB, the least of %d rounds:\n", static_cast<long long>(size), rounds);
    const auto ours = leastOf(rounds, {"/proc/self/exe", "--export", server.url(), file});
    print("export to Trello", ours);
    const auto curl = leastOf(rounds, {"curl", "-sS", "-o", "/dev/null", "-F", "file=@" + file.string(),
                                       server.url() + "/1/cards/c/attachments"});
    print("curl -F", curl);
    std::printf("CPU %.2f times that of curl\n", ours.milliseconds / curl.milliseconds);
}
