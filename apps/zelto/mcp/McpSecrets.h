#pragma once

#include "base/Outcome.h"

#include <ZeltoIntegrations/MCP/MCPError.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zelto::cli {

// What the header fields of a command hold, as a server may send it back: "***" stands in its place in all
// that is printed. Values of fewer than eight characters are left, since they occur in ordinary words, and so
// are those of fields that hold no secret ("Accept-Language").
class McpSecrets {
  public:
    explicit McpSecrets(const std::map<std::string, std::string>& headers);

    void maskText(std::string& text) const;

    // Within the strings of the document, so that it stays JSON.
    void maskJSON(std::string& json) const;

    void mask(Report& report) const;
    void mask(Failure& failure) const;
    void mask(MCPToolCallResult& result) const;

    // What the server wrote in it, before it is cut.
    void mask(MCPError& error) const;

    // A record as masked members of a report. The record is given up early: both may be large.
    template <class Record> JSONObject membersOf(Record record) const {
        auto json = JSONEncoder().encode(record).value_or("{}");
        record = {};
        returnFreedMemory();
        maskJSON(json);
        return objectIn(std::move(json));
    }

    // Of many small pieces the allocator keeps it otherwise.
    static void returnFreedMemory();

  private:
    static JSONObject objectIn(std::string json);
    void maskMembers(JSONObject& members) const;

    std::vector<std::string> plain_;  // in descending order of length
    std::vector<std::string> inJSON_; // the same as JSON writes them
};

} // namespace zelto::cli
