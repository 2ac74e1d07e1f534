#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailReader.h>

#include <Platform/UTF8.h>

#include <cstdint>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

// Any bytes as a mail: every operation of the interactor completes once, with text that is UTF-8.

namespace {

using zelto::IntegrationLinkFormat;
using zelto::IntegrationLinkType;

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void checkText(const std::optional<std::string>& text) {
    check(!text || zelto::isValidUTF8(*text));
}

void askAttachments(zelto::MailDataInteractor& interactor) {
    interactor.availableAttachments([&](const zelto::IntegrationAttachments& attachments) {
        for (const auto& each : attachments.list) {
            check(!each.name.empty() && each.name.find('/') == std::string::npos && each.name != "..");
            interactor.fetchAttachment(each.id, [&](const auto& url) {
                check(url && *url);
                const auto path = (*url)->filePath();
                check(std::filesystem::file_size(path) == static_cast<std::uintmax_t>(each.size));
                std::filesystem::remove_all(path.parent_path());
            });
        }
    });
}

void askBody(zelto::MailDataInteractor& interactor) {
    zelto::IntegrationExportHtmlOptions options;
    interactor.html(options, checkText);
    options.skipInlineImages = true;
    options.customHeader = "<p>header</p>";
    interactor.html(options, checkText);
    interactor.enml(options,
                    [](const auto& enml) { checkText(enml ? std::optional(enml->enml) : std::nullopt); });
    interactor.messagePlainText(IntegrationLinkType::backlink(IntegrationLinkFormat::markdown), checkText);
    interactor.formattedBodyComponents([](const auto&) {});
    interactor.formattedMeetingSummaryComponents([](const auto& components) { check(components.empty()); });
}

void askHeader(zelto::MailDataInteractor& interactor) {
    checkText(interactor.title());
    checkText(interactor.subject());
    check(interactor.title().find('\n') == std::string::npos);
    interactor.addresses();
    interactor.externalAddresses();
    interactor.originalDate();
    interactor.receivedDate();
    interactor.htmlHeader(checkText);
    interactor.headerComponents([](const auto&) {});
    for (const auto format : {IntegrationLinkFormat::raw, IntegrationLinkFormat::html,
                              IntegrationLinkFormat::markdown, IntegrationLinkFormat::mrkdwn}) {
        interactor.link(IntegrationLinkType::backlink(format), checkText);
        interactor.link(IntegrationLinkType::safeBacklink(format), checkText);
        interactor.linkComponents(IntegrationLinkType::altBacklink(format), [](const auto& link) {
            check(!link || zelto::URL::parse(link->url).has_value());
        });
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const int file = ::memfd_create("mail", MFD_CLOEXEC);
    check(file >= 0 && ::write(file, bytes, size) == static_cast<ssize_t>(size));
    const auto message = zelto::MailReader::open("/proc/self/fd/" + std::to_string(file));
    if (message) {
        zelto::MailDataInteractor interactor(*message);
        askHeader(interactor);
        askBody(interactor);
        askAttachments(interactor);
    }
    ::close(file);
    return 0;
}
