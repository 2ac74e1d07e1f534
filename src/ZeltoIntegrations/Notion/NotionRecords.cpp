#include <ZeltoIntegrations/Notion/NotionRecords.h>

#include <Platform/JSON/JSONCases.h>
#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(NotionDatabase, id, title);
ZELTO_JSON_RECORD(NotionUser, id, name, email);
ZELTO_JSON_RECORD(NotionStatus, id, name);
ZELTO_JSON_RECORD(NotionFullData, me, databases, users);
ZELTO_JSON_RECORD(NotionSaveToInfo::Journal, database);
ZELTO_JSON_RECORD(NotionSaveToInfo::Task, project, assignee, status, dueDate);
ZELTO_JSON_CASES(NotionSaveToInfo, value, "journal", "task");

const NotionDatabase& NotionSaveToInfo::parent() const {
    const auto* journal = std::get_if<Journal>(&value);
    return journal ? journal->database : std::get<Task>(value).project;
}

} // namespace zelto
