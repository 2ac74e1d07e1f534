#pragma once

#include <Platform/Date.h>
#include <Platform/HTTP/HTTPHeaders.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zelto {

// A request that a service of the sandbox received, as the page shows it: credentials are "***" everywhere.
struct SandboxRecord {
    std::uint64_t number = 0; // from 1
    Date date;
    std::uint64_t connection = 0; // from 1
    std::string service;          // "Trello"; empty for an unknown one
    std::string method;
    std::string host;
    std::string target; // path and query
    std::vector<HTTPHeaderField> fields;
    std::uint64_t bodySize = 0;
    std::string body;    // the beginning of a text, a list of the parts of a form; empty for bytes
    int status = 0;      // of the response; 0 if there was none
    std::string problem; // why the service refused it; empty if it did not
    std::string fault;   // the fault that it met; empty if there was none
    bool isWeb = false;  // a browser's, below /host/
};

} // namespace zelto
