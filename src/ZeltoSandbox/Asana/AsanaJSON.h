#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/Asana/AsanaStore.h>

#include <optional>
#include <string_view>

namespace zelto::sandbox {

// Asana's own JSON of its records, with all fields that the sandbox has.
JSONObject asanaUserJSON(const AsanaUserRecord& user, const AsanaStore& store);
JSONObject asanaWorkspaceJSON(const AsanaWorkspaceRecord& workspace);
JSONObject asanaProjectJSON(const AsanaProjectRecord& project, const AsanaWorkspaceRecord& workspace);
JSONObject asanaTaskJSON(const AsanaTaskRecord& task);
JSONObject asanaAttachmentJSON(const AsanaAttachmentRecord& attachment, const AsanaTaskRecord& task);

// "gid", "resource_type" and "name": the form of records in lists and within others.
JSONObject asanaCompact(const JSONObject& whole);

// The fields that `optFields` names, separated by commas, after "gid" and "resource_type". An unknown name
// is ignored; of a path ("assignee.email") the first name counts.
JSONObject asanaWithFields(const JSONObject& whole, std::string_view optFields);

// What the page shows: the workspaces with the tasks of their projects, and those of no project.
JSONObject asanaState(const AsanaStore& store);

} // namespace zelto::sandbox
