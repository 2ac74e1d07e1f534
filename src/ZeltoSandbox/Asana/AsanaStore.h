#pragma once

#include <Platform/Date.h>
#include <ZeltoSandbox/UploadedFile.h>

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

struct AsanaUserRecord {
    std::string gid;
    std::string name;
    std::string email;
};

struct AsanaAttachmentRecord {
    std::string gid;
    Date date;
    UploadedFile file;
};

struct AsanaProjectRecord {
    std::string gid;
    std::string name;
    bool isPublic = true;
    bool isArchived = false;
};

struct AsanaWorkspaceRecord {
    std::string gid;
    std::string name;
    bool isOrganization = false;
    std::vector<AsanaUserRecord> users;
    std::vector<AsanaProjectRecord> projects;

    // Null for none.
    const AsanaProjectRecord* findProject(std::string_view projectGID) const;
    // By identifier, e-mail address or "me".
    const AsanaUserRecord* findUser(std::string_view user) const;
};

struct AsanaTaskRecord {
    std::string gid;
    std::string name;
    std::string notes;
    const AsanaWorkspaceRecord* workspace = nullptr;
    std::vector<const AsanaProjectRecord*> projects;
    const AsanaUserRecord* assignee = nullptr;
    Date date;
    std::vector<AsanaAttachmentRecord> attachments;
};

// What an Asana account has: demo workspaces with the same identifiers in every sandbox, so that what a
// client has stored of them stays valid, and the tasks that were created. Tasks refer to the workspaces, so
// it cannot be copied.
class AsanaStore {
  public:
    static constexpr std::size_t maximumTaskCount = 20'000;

    AsanaStore();
    AsanaStore(const AsanaStore&) = delete;
    AsanaStore& operator=(const AsanaStore&) = delete;

    const std::vector<AsanaWorkspaceRecord>& workspaces() const { return workspaces_; }

    const std::deque<AsanaTaskRecord>& tasks() const { return tasks_; }

    // The account's own user.
    const AsanaUserRecord& user() const { return workspaces_.front().users.front(); }

    // Null for none.
    const AsanaWorkspaceRecord* findWorkspace(std::string_view gid) const;
    // The workspace that has the project; null for none.
    const AsanaWorkspaceRecord* findWorkspaceOfProject(std::string_view projectGID) const;
    AsanaTaskRecord* findTask(std::string_view gid);

    // Gives the task its identifier and date.
    AsanaTaskRecord& addTask(AsanaTaskRecord task);
    AsanaAttachmentRecord& addAttachment(AsanaTaskRecord& task, UploadedFile file);

  private:
    std::string newGID();

    std::vector<AsanaWorkspaceRecord> workspaces_;
    std::deque<AsanaTaskRecord> tasks_;
    std::uint64_t lastGID_;
};

// Whether the text has an identifier's form: digits.
bool isAsanaGID(std::string_view text);

} // namespace zelto::sandbox
