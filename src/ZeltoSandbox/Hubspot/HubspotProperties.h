#pragma once

#include <Platform/Date.h>
#include <ZeltoSandbox/Hubspot/HubspotError.h>

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// Reads the properties of a new object by HubSpot's schema and keeps what is wrong with them. A number is
// taken as its text; null and an empty text leave a property unset.
class HubspotProperties {
  public:
    // `known`: the properties that the object may have.
    HubspotProperties(const JSONValue& body, std::span<const std::string_view> known);

    // Empty if it is not set.
    std::string text(std::string_view property) const;

    // Each of these checks a property that is set.
    void limit(std::string_view property, std::size_t characters);
    // ISO 8601 with a time, in UTC, or milliseconds since 1970.
    std::optional<Date> date(std::string_view property);
    void oneOf(std::string_view property, std::span<const std::string_view> values);

    void fail(std::string_view property, std::string code, std::string message);

    // The body's own problem comes before those of properties.
    std::optional<HubspotError> problem() const;

    // Those that are set.
    const JSONObject& all() const { return all_; }

  private:
    void read(const std::string& property, const JSONValue& value);

    JSONObject all_;
    std::string inputProblem_;
    std::vector<HubspotPropertyProblem> problems_;
};

// Whether HubSpot takes the address: without quotes and blanks, with a host that has a top level.
bool isHubspotEmail(std::string_view email);

} // namespace zelto::sandbox
