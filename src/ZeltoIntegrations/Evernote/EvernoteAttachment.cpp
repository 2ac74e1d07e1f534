#include <ZeltoIntegrations/Evernote/EvernoteAttachment.h>

#include <Platform/Base64.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <utility>

namespace zelto {

namespace {

// The attachment as its JSON has it.
struct AttachmentText {
    std::string name;
    std::string mimeType;
    std::string data;
};

ZELTO_JSON_RECORD(AttachmentText, name, mimeType, data);

template <class To, class From> To converted(From attachment) {
    return {std::move(attachment.name), std::move(attachment.mimeType), std::move(attachment.data)};
}

template <class To, class From> std::vector<To> convertedEach(std::vector<From> attachments) {
    std::vector<To> all;
    all.reserve(attachments.size());
    for (auto& each : attachments) {
        all.push_back(converted<To>(std::move(each)));
    }
    return all;
}

} // namespace

void encodeJSON(JSONWriter& writer, const EvernoteAttachment& value) {
    encodeJSON(writer, AttachmentText{value.name, value.mimeType, base64Encoded(viewOf(value.data))});
}

void decodeJSON(const JSONReader& reader, EvernoteAttachment& value) {
    AttachmentText text;
    decodeJSON(reader, text);
    const auto bytes = base64Decoded(text.data);
    if (!bytes) {
        reader.fail("expected Base64 in \"data\"");
    }
    value = {std::move(text.name), std::move(text.mimeType), dataOf(*bytes)};
}

EvernoteAttachment toEvernoteAttachment(IntegrationsInteractorAttachment attachment) {
    return converted<EvernoteAttachment>(std::move(attachment));
}

IntegrationsInteractorAttachment toIntegrationsInteractorAttachment(EvernoteAttachment attachment) {
    return converted<IntegrationsInteractorAttachment>(std::move(attachment));
}

std::vector<EvernoteAttachment>
toEvernoteAttachments(std::vector<IntegrationsInteractorAttachment> attachments) {
    return convertedEach<EvernoteAttachment>(std::move(attachments));
}

std::vector<IntegrationsInteractorAttachment>
toIntegrationsInteractorAttachments(std::vector<EvernoteAttachment> attachments) {
    return convertedEach<IntegrationsInteractorAttachment>(std::move(attachments));
}

} // namespace zelto
