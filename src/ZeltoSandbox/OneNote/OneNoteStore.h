#pragma once

#include <Platform/Date.h>
#include <ZeltoSandbox/UploadedFile.h>

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

struct OneNoteUserRecord {
    std::string id;
    std::string displayName;
    std::string mail;
    std::string userPrincipalName;
};

struct OneNotePageRecord {
    std::string id;
    std::string title;
    Date date;
    std::string path; // of what is shown of it, in the file store
    std::vector<UploadedFile> files;
};

struct OneNoteSectionRecord {
    std::string id;
    std::string displayName;
    bool isFull = false; // takes no page
    std::deque<OneNotePageRecord> pages;
};

struct OneNoteNotebookRecord {
    std::string id;
    std::string displayName;
    std::vector<OneNoteSectionRecord> sections;
};

// What a OneNote account has: demo notebooks with the same identifiers in every sandbox, so that what a
// client has stored of them stays valid, and the pages that were created.
class OneNoteStore {
  public:
    static constexpr std::size_t maximumPageCount = 20'000;

    OneNoteStore();

    const OneNoteUserRecord& user() const { return user_; }

    const std::vector<OneNoteNotebookRecord>& notebooks() const { return notebooks_; }

    std::size_t pageCount() const { return pageCount_; }

    // Null for none.
    OneNoteSectionRecord* findSection(std::string_view id);

    // Gives the page its identifier and date.
    OneNotePageRecord& addPage(OneNoteSectionRecord& section, OneNotePageRecord page);

  private:
    OneNoteUserRecord user_;
    std::vector<OneNoteNotebookRecord> notebooks_;
    std::size_t pageCount_ = 0;
};

} // namespace zelto::sandbox
