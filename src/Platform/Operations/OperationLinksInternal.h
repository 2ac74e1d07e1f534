#pragma once

// For the sources of this folder only.

#include <Platform/Operations/Operation.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

namespace zelto {

// What most operations do without.
struct Operation::Links {
    struct Dependency {
        std::weak_ptr<Operation> operation;
        std::shared_ptr<Operation> finished;
        std::uint64_t order;
    };

    void addDependant(std::weak_ptr<Operation> dependant);

    std::unordered_map<const Operation*, Dependency> dependencies;
    std::uint64_t dependenciesAdded = 0;
    // May hold operations that were cancelled or no longer depend on this one.
    std::vector<std::weak_ptr<Operation>> dependants;
    std::move_only_function<void()> completionBlock;
};

} // namespace zelto
