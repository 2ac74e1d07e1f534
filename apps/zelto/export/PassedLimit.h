#pragma once

#include "export/SentRequest.h"

#include <Platform/JSON/JSONValue.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zelto::cli {

// A published limit of a service that an export would pass.
struct PassedLimit {
    std::string what; // "the card's name"
    std::uint64_t limit = 0;
    std::uint64_t actual = 0;
    std::string unit;             // "characters"
    std::string consequence = {}; // "Slack cuts what is longer"; empty where the service refuses it

    bool operator==(const PassedLimit&) const = default;
};

// Collects the limits that are passed.
class LimitCheck {
  public:
    void check(std::string what, std::uint64_t actual, std::uint64_t limit, std::string unit,
               std::string consequence = {});

    // The size of each file that the requests upload as a part of a form.
    void checkFiles(const std::vector<SentRequest>& requests, std::uint64_t sizeLimit);

    const std::vector<PassedLimit>& passed() const { return passed_; }

  private:
    std::vector<PassedLimit> passed_;
};

// "The card's name would pass the limit of 16384 characters: it has 17000."; before the full stop stands the
// consequence behind a semicolon.
std::string sentenceOf(const PassedLimit& limit);

// "limits" of a JSON document.
JSONValue described(const std::vector<PassedLimit>& limits);

} // namespace zelto::cli
