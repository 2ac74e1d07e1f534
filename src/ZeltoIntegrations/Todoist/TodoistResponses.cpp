#include <ZeltoIntegrations/Todoist/TodoistResponses.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <algorithm>
#include <string_view>

namespace zelto {

namespace {

constexpr std::string_view okStatus = "ok";

std::string wordsOf(const JSONReader& error) {
    if (error.kind() == JSONKind::string) {
        return std::string(error.string());
    }
    for (const auto* key : {"error", "error_tag"}) {
        const auto text = error.kind() == JSONKind::object ? error.find(key) : std::nullopt;
        if (text && text->kind() == JSONKind::string) {
            return std::string(text->string());
        }
    }
    return {};
}

bool isRefused(const std::pair<const std::string, TodoistCommandStatus>& status) {
    return status.second.error.has_value();
}

} // namespace

ZELTO_JSON_RECORD(TodoistFetchResponse, user, projects);
ZELTO_JSON_RECORD(TodoistUploadResponse, sync_status, temp_id_mapping);

void encodeJSON(JSONWriter& writer, const TodoistCommandStatus& status) {
    if (!status.error) {
        return writer.string(okStatus);
    }
    writer.beginObject();
    writer.field("error", *status.error);
    writer.endObject();
}

void decodeJSON(const JSONReader& reader, TodoistCommandStatus& status) {
    if (reader.kind() != JSONKind::string || reader.string() != okStatus) {
        status.error = wordsOf(reader);
    }
}

std::optional<std::string> TodoistUploadResponse::errorOf(const TodoistCommand& command) const {
    const auto found = sync_status.find(command.uuid);
    return found == sync_status.end() ? std::string() : found->second.error;
}

std::optional<std::string> TodoistUploadResponse::errorOfTask(const TodoistCommand& command) const {
    if (sync_status.contains(command.uuid)) {
        return errorOf(command);
    }
    const auto found = std::ranges::find_if(sync_status, isRefused);
    return found == sync_status.end() ? std::string() : found->second.error;
}

std::optional<std::string> TodoistUploadResponse::identifierOf(const TodoistCommand& command) const {
    const auto found = temp_id_mapping.find(command.temp_id);
    return found == temp_id_mapping.end() ? std::nullopt : std::optional(found->second);
}

} // namespace zelto
