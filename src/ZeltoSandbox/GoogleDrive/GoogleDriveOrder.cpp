#include <ZeltoSandbox/GoogleDrive/GoogleDriveOrder.h>

#include <Platform/ASCII.h>
#include <Platform/Text.h>

#include <algorithm>
#include <array>
#include <map>

namespace zelto::sandbox {

namespace {

// Of keys that tell nothing apart here: the user alone has and sees all files.
constexpr std::array<std::string_view, 4> idleKeys = {"sharedWithMeTime", "starred", "viewedByMeTime",
                                                      "modifiedByMeTime"};

// The name in lower case with each number so long that texts are in the order of numbers.
std::string naturalName(const DriveEntry& entry) {
    constexpr std::size_t numberLength = 20;
    const auto lower = foldedCase(entry.name);
    std::string natural;
    for (std::size_t i = 0; i < lower.size();) {
        auto end = i;
        while (end < lower.size() && isASCIIDigit(lower[end])) {
            ++end;
        }
        if (end == i) {
            natural.push_back(lower[i++]);
            continue;
        }
        natural.append(numberLength - std::min(numberLength, end - i), '0').append(lower, i, end - i);
        i = end;
    }
    return natural;
}

using Keys = std::map<const DriveEntry*, std::string>;

// Entries by texts in whose order they are; false for an unknown key.
bool keysOf(const std::vector<const DriveEntry*>& entries, std::string_view key, Keys& keys) {
    const auto numbered = [](std::uint64_t number) {
        const auto digits = std::to_string(number);
        return std::string(20 - digits.size(), '0') + digits;
    };
    for (const auto* entry : entries) {
        if (key == "name_natural") {
            keys[entry] = naturalName(*entry);
        } else if (key == "name") {
            keys[entry] = entry->name;
        } else if (key == "folder") {
            keys[entry] = entry->isFolder() ? "0" : "1";
        } else if (key == "quotaBytesUsed") {
            keys[entry] = numbered(entry->size());
        } else if (key == "createdTime" || key == "modifiedTime" || key == "recency") {
            const auto date = key == "createdTime" && !entry->revisions.empty()
                                  ? entry->revisions.front().date
                                  : entry->date;
            keys[entry] = numbered(static_cast<std::uint64_t>(std::max(0.0, date.unixSeconds() * 1e6)));
        } else if (std::ranges::find(idleKeys, key) != idleKeys.end()) {
            keys[entry] = "";
        } else {
            return false;
        }
    }
    return true;
}

} // namespace

bool sortForGoogleDrive(std::vector<const DriveEntry*>& entries, std::string_view orderBy) {
    constexpr std::string_view descending = " desc";
    std::vector<std::string_view> parts;
    for (bool goesOn = !orderBy.empty(); goesOn;) {
        const auto end = orderBy.find(',');
        parts.push_back(orderBy.substr(0, end));
        goesOn = end != std::string_view::npos;
        orderBy.remove_prefix(goesOn ? end + 1 : orderBy.size());
    }
    // The last key first: a sort leaves what it does not tell apart in the order of those before.
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        const bool isDescending = part->ends_with(descending);
        const auto key =
            trimmedBlanks(part->substr(0, part->size() - (isDescending ? descending.size() : 0)));
        const DriveEntry any;
        Keys keys;
        // Without entries, an unknown key is one all the same.
        if (!keysOf({&any}, key, keys) || !keysOf(entries, key, keys)) {
            return false;
        }
        // A stable sort by hand: that of this library uses what newer compilers warn of.
        std::map<const DriveEntry*, std::size_t> positions;
        for (const auto* entry : entries) {
            positions.emplace(entry, positions.size());
        }
        std::ranges::sort(entries, [&](const DriveEntry* left, const DriveEntry* right) {
            if (const auto order = keys[left].compare(keys[right]); order != 0) {
                return (order < 0) != isDescending;
            }
            return positions[left] < positions[right];
        });
    }
    return true;
}

} // namespace zelto::sandbox
