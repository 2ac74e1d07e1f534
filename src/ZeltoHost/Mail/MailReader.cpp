#include <Platform/FileNames.h>
#include <Platform/MediaTypes.h>
#include <ZeltoHost/Mail/ContentReferences.h>
#include <ZeltoHost/Mail/MailBody.h>
#include <ZeltoHost/Mail/MailContent.h>
#include <ZeltoHost/Mail/MailHeaderText.h>
#include <ZeltoHost/Mail/MailPartHeader.h>
#include <ZeltoHost/Mail/MailReader.h>
#include <ZeltoHost/Mail/MailScanner.h>

#include <algorithm>
#include <set>

namespace zelto {

namespace {

using Fields = std::vector<MailField>;

std::vector<IntegrationsInteractorAddress> addressesIn(const Fields& fields, std::string_view name) {
    std::vector<IntegrationsInteractorAddress> all;
    for (const auto& field : fields) {
        if (isField(field, name)) {
            std::ranges::move(decodedAddresses(field.value), std::back_inserter(all));
        }
    }
    return all;
}

std::optional<IntegrationsInteractorAddress> firstAddressIn(const Fields& fields,
                                                            std::initializer_list<std::string_view> names) {
    for (const auto name : names) {
        auto addresses = addressesIn(fields, name);
        if (!addresses.empty()) {
            return std::move(addresses.front());
        }
    }
    return std::nullopt;
}

// Servers put their field before the others, so the first one is of the last hop.
std::optional<Date> receivedDateIn(const Fields& fields) {
    for (const auto& field : fields) {
        const auto semicolon = field.value.rfind(';');
        if (isField(field, "Received") && semicolon != std::string::npos) {
            if (const auto date = decodedDate(std::string_view(field.value).substr(semicolon + 1))) {
                return date;
            }
        }
    }
    return std::nullopt;
}

void readHeader(const Fields& fields, MailMessage& message) {
    message.from = firstAddressIn(fields, {"From", "Sender", "Return-Path"});
    message.to = addressesIn(fields, "To");
    message.cc = addressesIn(fields, "Cc");
    message.bcc = addressesIn(fields, "Bcc");
    if (const auto* subject = findField(fields, "Subject")) {
        message.subject = decodedText(subject->value);
    }
    if (const auto* id = findField(fields, "Message-ID")) {
        message.messageID = decodedMessageID(id->value);
    }
    if (const auto* date = findField(fields, "Date")) {
        message.sentDate = decodedDate(date->value);
    }
    message.receivedDate = receivedDateIn(fields);
    if (auto delivered =
            firstAddressIn(fields, {"Delivered-To", "X-Delivered-To", "X-Original-To", "Envelope-To"})) {
        message.deliveredTo = std::move(delivered->email);
    }
}

std::set<std::string> referredIDs(const MailMessage& message, const std::set<std::string>& known) {
    std::set<std::string> ids;
    for (const auto& section : message.body) {
        for (const auto index : section.html) {
            if (const auto html = readText(*message.file, message.parts[index], message.limits.textBytes)) {
                ids.merge(referredContentIDs(html->text, known));
            }
        }
    }
    return ids;
}

bool isImageWithID(const MailPart& part) {
    return !part.contentID.empty() && part.mediaType.starts_with("image/");
}

std::string fileNameFor(const MailPart& part) {
    const auto extension = extensionForMediaType(part.mediaType);
    std::string fallback = part.mediaType == "text/calendar"        ? "invite"
                           : part.mediaType.starts_with("image/")   ? "image"
                           : part.mediaType.starts_with("message/") ? "message"
                                                                    : "attachment";
    if (isMessage(part)) {
        const auto stem = part.name.ends_with(".eml") ? part.name.substr(0, part.name.size() - 4) : part.name;
        return fileNameCutTo(cleanedFileName(stem, fallback) + ".eml", cleanedFileNameLimit);
    }
    if (extension) {
        fallback.append(".").append(*extension);
    }
    return cleanedFileName(part.name, fallback);
}

void sortOthers(const std::vector<std::size_t>& others, MailMessage& message) {
    std::set<std::string> known;
    for (const auto index : others) {
        if (isImageWithID(message.parts[index])) {
            known.insert(message.parts[index].contentID);
        }
    }
    const auto referred = known.empty() ? known : referredIDs(message, known);
    for (const auto index : others) {
        const auto& part = message.parts[index];
        if (isImageWithID(part) && referred.contains(part.contentID)) {
            message.inlineImages.push_back({part.contentID, fileNameFor(part), part.mediaType, index});
            continue;
        }
        const auto id = static_cast<std::int64_t>(message.attachments.size()) + 1;
        message.attachments.push_back({id, fileNameFor(part), part.mediaType, index});
    }
}

} // namespace

const MailAttachment* MailMessage::attachment(std::int64_t id) const {
    const auto found = std::ranges::find(attachments, id, &MailAttachment::id);
    return found == attachments.end() ? nullptr : &*found;
}

Result<std::shared_ptr<const MailMessage>, MailError> MailReader::open(const std::filesystem::path& path,
                                                                       const MailLimits& limits) {
    auto file = MailFile::open(path);
    if (!file) {
        return failure(file.error());
    }
    auto scan = scanMail(**file, limits);
    if (!scan) {
        return failure(scan.error());
    }
    auto message = std::make_shared<MailMessage>();
    message->file = *std::move(file);
    message->limits = limits;
    message->parts = std::move(scan->parts);
    readHeader(scan->header, *message);
    auto roles = rolesOf(message->parts);
    message->body = std::move(roles.body);
    sortOthers(roles.others, *message);
    return message;
}

} // namespace zelto
