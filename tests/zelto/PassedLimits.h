#pragma once

#include <export/SentRequest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zelto {

constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20;

// "what: actual of limit unit" for each limit of a service that the requests of an export pass.
template <class Adapter, class Export>
std::vector<std::string> passedLimits(Export& one, const std::vector<cli::SentRequest>& requests) {
    std::vector<std::string> all;
    for (const auto& each : Adapter::passedLimits(*one.exporter(), one.configuration, requests)) {
        all.push_back(each.what + ": " + std::to_string(each.actual) + " of " + std::to_string(each.limit) +
                      " " + each.unit);
    }
    return all;
}

} // namespace zelto
