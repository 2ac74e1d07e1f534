// A mail client in small: sends a mail to Bear, and prints the URL where a client would open it.

#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailReader.h>
#include <ZeltoHost/Platform/EmailValidator.h>
#include <ZeltoHost/Platform/HostPlatformInteractor.h>
#include <ZeltoHost/Storage/SQLiteAccountStorage.h>
#include <ZeltoIntegrations/Bear/BearExporter.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <cstdio>
#include <future>

using namespace zelto;

int main(int argc, char** argv) {
    const auto mail = argc == 3 ? MailReader::open(argv[1]) : failure(MailError::notFound);
    const auto accounts = argc == 3 ? SQLiteAccountStorage::open(argv[2]) : failure(StorageError());
    if (!mail || !accounts) {
        std::fputs("usage: embed MAIL.eml DATA-DIRECTORY\n", stderr);
        return 2;
    }
    const auto host = std::make_shared<HostPlatformInteractor>([](const URL& url, Callback<bool> opened) {
        std::puts(url.absoluteString().c_str());
        opened(true);
    });
    IntegrationsManager manager(*accounts, host, isEmailAddress, "");

    const ServiceAccountConfiguration account(ServiceType::Bear, std::nullopt, true);
    const auto exporter =
        manager.createServiceExporter<BearExporter>(account, std::make_shared<MailDataInteractor>(*mail));
    std::promise<ExporterResult<void>> exported;
    exporter->loadConfiguration([&](auto configuration) {
        configuration->tags = {"mail"};
        exporter->export_(*configuration, [&](auto result) { exported.set_value(result); });
    });
    return exported.get_future().get() ? 0 : 1;
}
