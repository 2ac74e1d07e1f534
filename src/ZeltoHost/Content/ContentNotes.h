#pragma once

#include <TrovenhalCommon/Protected.h>
#include <ZeltoHost/Content/ContentNote.h>

#include <vector>

namespace zelto {

// Collects what the readers and writers of a message's content leave out or change of it, each note once. A
// host gives one to the data interactor and to the platform interactor of an export, and shows the notes with
// the export's outcome. Any thread.
class ContentNotes {
  public:
    void add(ContentNote note);

    void add(ContentNoteKind kind) { add(ContentNote{kind, {}}); }

    // In the order in which they came.
    std::vector<ContentNote> all() const { return notes_.value(); }

  private:
    Protected<std::vector<ContentNote>> notes_;
};

} // namespace zelto
