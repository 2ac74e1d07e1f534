#pragma once

#include <Platform/Date.h>
#include <Platform/JSON/JSONValue.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// A stage of the lifecycle of contacts.
struct HubspotStageRecord {
    std::string id;
    std::string label;
    bool isArchived = false; // no contact can get it
};

struct HubspotContactRecord {
    std::string id = {};
    JSONObject properties = {}; // texts; the e-mail address in lower case
    Date created = {};
    bool isDemo = false;

    // Empty if there is none.
    std::string text(std::string_view property) const;
};

enum class HubspotActivityType { email, note, meeting };

struct HubspotActivityRecord {
    HubspotActivityType type = HubspotActivityType::email;
    std::string id = {};
    Date created = {};
    Date timestamp = {};                    // of its place in the timeline
    JSONObject properties = {};             // texts
    JSONObject headers = {};                // of an e-mail; empty if there are none
    std::vector<std::string> contacts = {}; // identifiers, each once
    std::string shownHTML = {};             // path in the file store; empty if there is none
};

// What an account of HubSpot has: stages and demo contacts with the same identifiers in every sandbox, so
// that what a client has stored of them stays valid, and what was created. `additional` counts those beside
// the demo ones.
class HubspotStore {
  public:
    static constexpr std::size_t maximumContactCount = 20'000;
    static constexpr std::size_t maximumActivityCount = 20'000;
    static constexpr std::uint64_t maximumContent = std::uint64_t{32} << 20; // bytes of all activities' texts

    HubspotStore();

    // In the order of the pipeline.
    const std::vector<HubspotStageRecord>& stages(std::size_t additional);

    // Without the additional ones; the demo ones first, then the oldest.
    const std::deque<HubspotContactRecord>& contacts() const { return contacts_; }

    std::optional<HubspotContactRecord> findContact(std::string_view id, std::size_t additional) const;
    // By its address or by a further one ("hs_additional_emails"), without regard to case.
    std::optional<HubspotContactRecord> findContactByEmail(std::string_view email,
                                                           std::size_t additional) const;

    bool hasSpaceForContact() const { return contacts_.size() < maximumContactCount; }

    // Gives the contact its identifier and date.
    const HubspotContactRecord& addContact(HubspotContactRecord contact);

    // The oldest first.
    const std::deque<HubspotActivityRecord>& activities() const { return activities_; }

    // `size`: of its texts.
    bool hasSpaceForActivity(std::uint64_t size) const;
    // Gives the activity its identifier and date.
    HubspotActivityRecord& addActivity(HubspotActivityRecord activity, std::uint64_t size);

  private:
    void keepContact(HubspotContactRecord contact);

    std::vector<HubspotStageRecord> stages_;
    std::deque<HubspotContactRecord> contacts_;
    std::map<std::string, std::size_t, std::less<>> placesByID_;
    std::map<std::string, std::size_t, std::less<>> placesByEmail_; // in folded case
    std::deque<HubspotActivityRecord> activities_;
    std::uint64_t content_ = 0; // bytes
};

} // namespace zelto::sandbox
