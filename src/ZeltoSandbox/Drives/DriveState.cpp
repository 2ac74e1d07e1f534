#include <ZeltoSandbox/Drives/DriveState.h>

#include <ZeltoSandbox/DateText.h>

namespace zelto::sandbox {

namespace {

constexpr std::size_t shownCount = 300; // entries of a folder, beside as many of the newest

JSONValue revisionsState(const DriveEntry& file) {
    JSONValue::Array revisions;
    for (auto revision = file.revisions.rbegin(); revision != file.revisions.rend(); ++revision) {
        revisions.push_back(JSONObject{{"id", revision->id},
                                       {"date", controlDateText(revision->date)},
                                       {"size", revision->content.size},
                                       {"url", revision->path}});
    }
    return revisions;
}

JSONObject entryState(const DriveEntry& entry, std::size_t childCount) {
    JSONObject state{{"id", entry.id},
                     {"parent", entry.parent->id},
                     {"name", entry.name},
                     {"trashed", entry.isTrashed},
                     {"date", controlDateText(entry.date)}};
    if (entry.isFolder()) {
        state.set("count", childCount);
    } else {
        state.set("mediaType", entry.mediaType);
        state.set("revisions", revisionsState(entry));
    }
    return state;
}

} // namespace

JSONObject driveState(const Drive& drive, std::string_view userName, std::string_view email) {
    std::map<const DriveEntry*, std::size_t> counts;
    for (const auto& [id, entry] : drive.entries()) {
        ++counts[entry.parent];
    }
    std::map<const DriveEntry*, std::size_t> seen;
    JSONValue::Array entries;
    for (const auto& [id, entry] : drive.entries()) {
        const auto number = ++seen[entry.parent];
        if (number <= shownCount || number + shownCount > counts[entry.parent]) {
            const auto found = counts.find(&entry);
            entries.push_back(entryState(entry, found == counts.end() ? 0 : found->second));
        }
    }
    const auto& newest = drive.newest();
    return {{"user", JSONObject{{"name", userName}, {"email", email}}},
            {"root", drive.root().id},
            {"rootCount", counts[&drive.root()]},
            {"uploads", drive.uploadCount()},
            {"newest", newest.empty() ? JSONValue() : JSONValue(newest)},
            {"entries", std::move(entries)}};
}

} // namespace zelto::sandbox
